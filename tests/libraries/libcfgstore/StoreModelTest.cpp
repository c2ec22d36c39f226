// Random scripts of operations give the same answers and the same content as a simple model of the contract; and so
// does the text that the store writes afterwards, when it is read again.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "LdifGenerator.h"
#include "StoreModel.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Content;
using test::StoreModel;
using test::Strings;
using test::TestStore;

Content contentOf(TestStore& store) {
  Content content;
  for (const std::string& dn : store.subordinates("", 2).values) {
    char* const normal = formatDn(dn.c_str());
    auto& attributes = content[normal];
    std::free(normal);
    for (std::string name : store.attributes(dn.c_str())) {
      const Strings values = store.values(dn.c_str(), name.c_str()).values;
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      RC_ASSERT(!attributes.contains(name));
      attributes[name] = values;
    }
  }
  return content;
}

// One random operation on both; they must answer the same.
void step(TestStore& store, StoreModel& model) {
  const std::string number(1, *rc::gen::inRange<char>('0', '8'));
  const std::string normal = "CN=E" + number + ",CN=CONFIGURATION";
  const std::string written = *rc::gen::elementOf(
      Strings{normal, "cn=e" + number + ", cn=configuration", "CN = E" + number + ";CN=Configuration"});
  const std::string name(1, *rc::gen::inRange<char>('a', 'f'));
  const std::string spelled = *rc::gen::arbitrary<bool>() ? name : std::string(1, static_cast<char>(name[0] - 32));
  // Values that are there are as likely as others.
  Strings known{"x", "y", ""};
  const auto entry = model.content().find(normal);
  if (entry != model.content().end() && entry->second.contains(name)) known = entry->second.at(name);
  const auto value = [&] { return *rc::gen::oneOf(rc::gen::elementOf(known), test::genValue()); };

  switch (*rc::gen::weightedElement<int>({{6, 0}, {5, 1}, {3, 2}, {1, 3}, {1, 4}})) {
    case 0: {
      const std::string added = value();
      RC_ASSERT(store.addValue(written.c_str(), spelled.c_str(), added.c_str()) == model.addValue(normal, name, added));
      break;
    }
    case 1: {
      Strings listed;
      for (int i = *rc::gen::inRange(0, 4); i > 0; --i) listed.push_back(value());
      RC_ASSERT(store.delValue(written.c_str(), spelled.c_str(), listed) == model.delValue(normal, name, listed));
      break;
    }
    case 2: {
      const std::string set = value();
      RC_ASSERT(store.setValue(written.c_str(), spelled.c_str(), set.c_str()) == model.setValue(normal, name, set));
      break;
    }
    case 3: {
      const std::string cn = value();
      const std::string objectClass = value();
      RC_ASSERT(store.addEntry(written.c_str(), cn.c_str(), objectClass.c_str(), "top") ==
                model.addEntry(normal, cn, objectClass, "top"));
      break;
    }
    default:
      RC_ASSERT(store.removeEntry(written.c_str()) == model.removeEntry(normal));
  }
}

RC_GTEST_PROP(StoreModel, AgreesAfterEachStep, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore store(file.text);
  StoreModel model(file.content);
  for (int steps = *rc::gen::inRange(0, 15); steps > 0; --steps) {
    step(store, model);
    RC_ASSERT(contentOf(store) == model.content());
  }
}

RC_GTEST_PROP(StoreModel, AgreesWithTheTextThatIsReadAgain, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore store(file.text);
  StoreModel model(file.content);
  for (int steps = *rc::gen::inRange(0, 40); steps > 0; --steps) step(store, model);
  const std::string text = store.text();
  TestStore again(text);
  RC_ASSERT(contentOf(again) == model.content());
  RC_ASSERT(again.subordinates("", 2).values == store.subordinates("", 2).values);
  RC_ASSERT(store.store().changed() == (text != file.text));
}

}  // namespace
}  // namespace cfgstore
