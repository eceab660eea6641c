// What the simulated shop sells: departments and their products. See Shop.h for who buys it.
//
// Twelve departments share the products as evenly as the number allows. A department has
//   families   a starter (a printer) and its refill (ink for that printer), in pairs: one pair for
//              every sixteen products, 1 to 12 pairs
//   ordinary   all others, the most popular first: the product of rank r, from 0, is drawn with a
//              weight of 1 / (r + 2). Every fourth, beginning with the first, has the one behind it
//              as companion (paint and a brush).
//
// A product's code is its department's code and its number there, from 1: TEA-001; numbers have at
// least three digits. Codes are all different, and so are labels.
//
// The catalogue depends on the number of products alone. It is never changed once it is made: any
// number of threads may use it at once.

#ifndef CLI_SHOPCATALOGUE_H_
#define CLI_SHOPCATALOGUE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orbseq {

using ProductId = std::uint32_t;  // its place in ShopCatalogue::products()

struct Product {
  std::string code;
  std::string label;                   // English words, perhaps with a comma; no quotes
  std::optional<ProductId> refill;     // of starters: what they use up
  std::optional<ProductId> companion;  // what often completes a basket that has this product
  std::int32_t refillDays = 0;         // of refills: how long one lasts, in days; else 0
};

struct Department {
  std::uint32_t share;                   // how often its products are wanted, against the others'
  std::array<std::uint16_t, 12> season;  // January first: how often then, in per cent of `share`
  ProductId first;                       // starter, refill, starter, refill, ...
  std::uint32_t families;                // pairs of those
  ProductId ordinary;                    // where the ordinary products begin: first + 2 * families
  std::vector<std::uint32_t> weights;    // [ordinary products] running sums of their weights
};

class ShopCatalogue {
 public:
  static constexpr std::size_t kFewestProducts = 50;
  static constexpr std::size_t kMostProducts = 100'000;

  // Requires a number of products from kFewestProducts to kMostProducts.
  explicit ShopCatalogue(std::size_t products);

  // Department after department.
  const std::vector<Product>& products() const noexcept { return products_; }
  const std::vector<Department>& departments() const noexcept { return departments_; }

 private:
  std::vector<Product> products_;
  std::vector<Department> departments_;
};

}  // namespace orbseq

#endif  // CLI_SHOPCATALOGUE_H_
