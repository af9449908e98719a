// A list as one page that any browser shows by itself: nothing is fetched, and all texts are shown as texts. Pure; any
// thread.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>

#include "host/Picture.h"
#include "host/Selection.h"

namespace varcolin::host {

/// What a page shows, beside the products themselves.
struct TPageOptions {
  EProductKind Kind = EProductKind::Program;
  std::string Filter;               ///< what the products were filtered by, so that the page tells
  std::optional<ESortOrder> Order;  ///< what they are sorted by
};

/// The large icons of one kind of products by their index.
using TPageIcons = std::map<std::int32_t, TPicture>;

/// The page (HTML, UTF-8) with the products in their order. A product whose icon is not there has none.
[[nodiscard]] std::string FormatPage(const TPageOptions& AOptions, std::span<const TProductRecord> AProducts,
                                     const TPageIcons& AIcons);

}  // namespace varcolin::host
