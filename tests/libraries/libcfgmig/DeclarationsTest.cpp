// The class as a caller and a linker see it: operations with their argument and result types, the order of the
// members. Most of this is checked when the file is compiled.

#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "ConfigFile.h"
#include "ldtr.h"

namespace {

using OVOConfigUtils::CfgUtils;

// The store lies by value in every ConfigFile: one pointer, no virtual function.
static_assert(sizeof(CfgUtils) == sizeof(void*));
static_assert(!std::is_polymorphic_v<CfgUtils>);
static_assert(std::is_constructible_v<CfgUtils, const char*, aes_key_data*>);
static_assert(!std::is_copy_constructible_v<CfgUtils> && !std::is_copy_assignable_v<CfgUtils>);

static_assert(std::has_virtual_destructor_v<ConfigFile>);
static_assert(std::is_constructible_v<ConfigFile, std::string, aes_key_data*>);
static_assert(!std::is_copy_constructible_v<ConfigFile> && !std::is_copy_assignable_v<ConfigFile>);

// Virtual table pointer, file name, inventory, count, store: the binary interface.
static_assert(sizeof(ConfigFile) == 4 * sizeof(void*) + sizeof(std::string));

static_assert(std::same_as<decltype(trcEvents), std::uint32_t>);

using Text = char*;
using ConstText = const char*;
using Old = ConfigFile*;

static_assert(std::same_as<decltype(&ConfigFile::getDns), int (ConfigFile::*)()>);
static_assert(std::same_as<decltype(&ConfigFile::freeParamVals), int (ConfigFile::*)(char**)>);
static_assert(std::same_as<decltype(std::declval<ConfigFile>().getFileName()), std::string>);
static_assert(std::same_as<decltype(std::declval<ConfigFile>().getDnNum()), int>);
static_assert(std::same_as<decltype(std::declval<ConfigFile>().getCfgDns()), char**>);
static_assert(std::same_as<decltype(std::declval<ConfigFile>().getCfgUtils()), CfgUtils*>);
static_assert(std::same_as<decltype(std::declval<ConfigFile>().dumpDns()), void>);
static_assert(std::same_as<decltype(&ConfigFile::compareConfigFiles), int (ConfigFile::*)(Old)>);
static_assert(std::same_as<decltype(&ConfigFile::mergeConfigFiles), int (ConfigFile::*)(Old, ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::removeDBInfo), int (ConfigFile::*)()>);
static_assert(std::same_as<decltype(&ConfigFile::removeCLInfo), int (ConfigFile::*)()>);
static_assert(std::same_as<decltype(&ConfigFile::editCLInfo), int (ConfigFile::*)()>);
static_assert(std::same_as<decltype(&ConfigFile::removeDBInstInfo), int (ConfigFile::*)()>);
static_assert(std::same_as<decltype(&ConfigFile::checkSchemaFiles),
                           int (ConfigFile::*)(Text, ConstText, Text, char***, char***)>);

static_assert(std::same_as<decltype(&ConfigFile::compareEntries), int (ConfigFile::*)(Text, Old)>);
static_assert(requires { static_cast<void (ConfigFile::*)(Text)>(&ConfigFile::removeDn); });
static_assert(std::same_as<decltype(&ConfigFile::processPlugins), int (ConfigFile::*)(Old, bool)>);
static_assert(std::same_as<decltype(&ConfigFile::pluginCmp), int (ConfigFile::*)(ConstText, ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::processNewEntry), int (ConfigFile::*)(Text, Old, ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::processUpdatedEntry), int (ConfigFile::*)(Text, Old, ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::additionalChecks), int (ConfigFile::*)(Old, ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::addCfgEntry), int (ConfigFile::*)(Text, Old)>);
static_assert(std::same_as<decltype(&ConfigFile::mergeCfgEntry), int (ConfigFile::*)(Text, Old)>);
static_assert(std::same_as<decltype(&ConfigFile::mergeChangeDnEntry), int (ConfigFile::*)(Text, Text, Old)>);
static_assert(std::same_as<decltype(&ConfigFile::isMultiVal), int (ConfigFile::*)(Text)>);
static_assert(std::same_as<decltype(&ConfigFile::isOVOFile), int (ConfigFile::*)(ConstText)>);
static_assert(std::same_as<decltype(&ConfigFile::processIncSchema), int (ConfigFile::*)(Old)>);
static_assert(std::same_as<decltype(&ConfigFile::replAddEntry), int (ConfigFile::*)(Old)>);

template <class... Rules>
constexpr bool allAre() {
  return (std::same_as<Rules, int (ConfigFile::*)(Text, Old)> && ...);
}
static_assert(allAre<decltype(&ConfigFile::addTo41), decltype(&ConfigFile::addTo51), decltype(&ConfigFile::addTo52),
                     decltype(&ConfigFile::addTo60), decltype(&ConfigFile::mergeIn41), decltype(&ConfigFile::mergeIn51),
                     decltype(&ConfigFile::mergeIn52), decltype(&ConfigFile::mergeIn60)>());

template <class... Checks>
constexpr bool allCheck() {
  return (std::same_as<Checks, int (ConfigFile::*)(Old)> && ...);
}
static_assert(allCheck<decltype(&ConfigFile::check41), decltype(&ConfigFile::check51), decltype(&ConfigFile::check52),
                       decltype(&ConfigFile::check60)>());

static_assert(std::same_as<decltype(clogPlugInPath), const char*>);
static_assert(std::same_as<decltype(rdbmPlugInPath), const char*>);

// The class has no standard layout because of its destructor, but both compilers know where its members lie.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

TEST(Declarations, MembersLieInTheOrderOfTheBinaryInterface) {
  const std::size_t name = sizeof(void*);
  EXPECT_EQ(offsetof(ConfigFile, m_fileName), name);
  EXPECT_EQ(offsetof(ConfigFile, m_cfgDns), name + sizeof(std::string));
  EXPECT_EQ(offsetof(ConfigFile, m_dnNum), name + sizeof(std::string) + sizeof(char**));
  EXPECT_EQ(offsetof(ConfigFile, m_cfgUtils), name + sizeof(std::string) + 2 * sizeof(char**));
}

#pragma GCC diagnostic pop

}  // namespace
