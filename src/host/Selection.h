// Which programs and updates are shown, in which order, and what changed between two readings. Pure; any thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/ProductRecord.h"

namespace varcolin::host {

enum class ESortOrder { Name, Size, Date, Publisher };

/// Keeps the products whose name or publisher contains AText, without regard to case; all for an empty text.
void FilterProducts(std::vector<TProductRecord>& AProducts, std::string_view AText);
/// Sorts by name; by size, the largest first; by install date, the newest first; by publisher and then name. Texts are
/// compared without regard to case and to the user's locale; what compares equal keeps its order, what is unknown
/// comes last in the orders by size and date.
void SortProducts(std::vector<TProductRecord>& AProducts, ESortOrder AOrder);

/// The products that a text names: those with this GUID (braces may be missing) or update ID; else those with this
/// name; else those whose name contains it. Case does not matter.
[[nodiscard]] std::vector<TProductRecord> FindProducts(std::span<const TProductRecord> AProducts,
                                                       std::string_view ANameOrGuid);

/// The one product that a text names. Throws EHostError, with the candidates, for none and for several.
[[nodiscard]] TProductRecord ChooseProduct(std::span<const TProductRecord> AProducts, std::string_view ANameOrGuid);

/// What happened to a program between two readings. Before is empty for one that appeared, After for one that vanished.
struct TProductChange {
  std::optional<TProductRecord> Before;
  std::optional<TProductRecord> After;
};

/// Compares two readings: what vanished, in its old order, then what appeared or changed, in its new order. Programs
/// are recognised by GUID and name; those that have both in common are told apart by their order.
[[nodiscard]] std::vector<TProductChange> CompareReadings(std::span<const TProductRecord> ABefore,
                                                          std::span<const TProductRecord> AAfter);

/// One line (without time and line end) that tells a person of a change; empty when it is none that a person sees.
[[nodiscard]] std::string DescribeChange(const TProductChange& AChange);

}  // namespace varcolin::host
