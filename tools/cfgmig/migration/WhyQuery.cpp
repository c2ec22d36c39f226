#include "migration/WhyQuery.h"

#include <algorithm>

#include "Line.h"
#include "NormalDn.h"

namespace tool {

std::vector<WhyQuery> readingsOf(const std::string& text) {
  std::vector<WhyQuery> readings;
  if (const auto dn = cfgstore::normalDn(text)) readings.push_back({*dn, {}, {}});
  for (std::size_t colon = text.rfind(':'); colon != std::string::npos && colon > 0;
       colon = text.rfind(':', colon - 1)) {
    const std::string rest = text.substr(colon + 1);
    const std::string attribute = rest.substr(0, rest.find('='));
    if (!cfgstore::isAttributeName(attribute)) continue;
    const auto dn = cfgstore::normalDn(text.substr(0, colon));
    if (!dn) continue;
    WhyQuery query{*dn, attribute, {}};
    if (attribute.size() < rest.size()) query.value = rest.substr(attribute.size() + 1);
    readings.push_back(std::move(query));
  }
  return readings;
}

}  // namespace tool
