#pragma once

#include <span>
#include <string_view>

namespace pellak {

/// One section of the catalogue.
struct Meta {
  std::string_view id;
  std::string_view name;
  std::string_view desc;
  std::span<const std::string_view> cats;      ///< categories driven by the rules file
  std::span<const std::string_view> specials;  ///< categories with a scanner of their own
};

/// The eight sections, in the order of the page and of a full scan. Immutable.
std::span<const Meta> metas();

/// The section of that id, or nullptr.
const Meta* cercaMeta(std::string_view id);

}  // namespace pellak
