#include "cli/ShopCatalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <utility>

namespace orbseq {

namespace {

constexpr std::size_t kNouns = 8;
constexpr std::size_t kVariants = 12;

using Variants = std::array<const char*, kVariants>;

struct Range {
  const char* code;
  std::uint32_t share;
  std::array<std::uint16_t, 12> season;
  const char* starter;
  const char* refill;
  std::int32_t refillDays;
  const Variants* variants;
  // The second completes the first, and the sixth the fifth.
  std::array<const char*, kNouns> nouns;
};

const Variants kFood = {"classic", "organic", "everyday", "fine",   "family", "mild",
                        "rich",    "country", "select",   "simple", "light",  "golden"};
const Variants kGoods = {"basic", "sturdy", "blue",  "green",  "white",     "compact",
                         "large", "deluxe", "light", "travel", "colourful", "grey"};

constexpr std::array<std::uint16_t, 12> kEven = {100, 100, 100, 100, 100, 100,
                                                 100, 100, 100, 100, 100, 100};
constexpr std::array<std::uint16_t, 12> kSpring = {20,  50, 200, 400, 400, 200,
                                                   100, 70, 60,  40,  20,  10};
constexpr std::array<std::uint16_t, 12> kSummer = {50,  50,  80,  120, 180, 250,
                                                   250, 180, 100, 60,  50,  60};
constexpr std::array<std::uint16_t, 12> kDecember = {30, 50, 40, 60, 60,  40,
                                                     40, 40, 50, 80, 180, 900};
constexpr std::array<std::uint16_t, 12> kWinter = {150, 140, 120, 90,  80,  60,
                                                   60,  60,  90,  120, 140, 160};
constexpr std::array<std::uint16_t, 12> kAutumn = {110, 90,  80,  80,  70,  70,
                                                   80,  160, 220, 120, 100, 80};

// The shares fall, as the departments of a shop differ.
const std::array<Range, 12> kRanges = {{
    {"TEA",
     150,
     kWinter,
     "coffee machine",
     "coffee capsules",
     21,
     &kFood,
     {"black tea, 100 bags", "whole milk, 1 litre", "ground coffee, 500 g", "cocoa powder, 250 g",
      "green tea, 50 bags", "lemon syrup, 300 ml", "herbal tea, 20 bags", "cane sugar, 1 kg"}},
    {"PAN",
     140,
     kEven,
     "bread maker",
     "bread mix",
     24,
     &kFood,
     {"spaghetti, 500 g", "tomato sauce, 400 g", "brown rice, 1 kg", "lentils, 500 g",
      "pancake mix, 400 g", "maple syrup, 250 ml", "olive oil, 750 ml", "oat flakes, 500 g"}},
    {"BTH",
     120,
     kEven,
     "safety razor",
     "razor blades",
     28,
     &kGoods,
     {"toothbrush, medium", "toothpaste, 75 ml", "hand soap, 3 bars", "bath towel, 70 x 140 cm",
      "hair brush, round", "shampoo, 300 ml", "shower sponge, 2 pieces", "body lotion, 400 ml"}},
    {"CLN",
     110,
     kEven,
     "floor sweeper",
     "sweeper cloths",
     26,
     &kGoods,
     {"bucket, 10 litres", "floor cloths, 5 pieces", "dish brush, beech", "laundry basket, 40 l",
      "window wiper, 30 cm", "glass cleaner, 500 ml", "bin bags, 35 l", "clothes pegs, 50 pieces"}},
    {"PET",
     100,
     kEven,
     "pet fountain",
     "fountain filters",
     35,
     &kGoods,
     {"feeding bowl, 1 litre", "dry food, 3 kg", "dog lead, 2 m", "cat basket, 50 cm",
      "litter tray, 40 x 50 cm", "cat litter, 10 kg", "chew rope, 30 cm", "bird feeder, hanging"}},
    {"OFF",
     95,
     kAutumn,
     "ink printer",
     "ink cartridges",
     35,
     &kGoods,
     {"notebook, A5", "ball pens, 10 pieces", "ring binder, 60 mm", "desk lamp, 9 W",
      "parcel boxes, 5 pieces", "parcel tape, 66 m", "paper clips, 200 pieces",
      "wall calendar, A3"}},
    {"DIY",
     90,
     kEven,
     "orbital sander",
     "sanding discs",
     30,
     &kGoods,
     {"wall paint, 5 litres", "flat brush, 60 mm", "tool box, 45 cm", "step ladder, 4 steps",
      "wood screws, 100 pieces", "wall plugs, 100 pieces", "tape measure, 5 m",
      "work gloves, 2 pairs"}},
    {"GRD",
     85,
     kSpring,
     "lawn trimmer",
     "trimmer line",
     28,
     &kGoods,
     {"flower pot, 25 cm", "potting soil, 20 l", "watering can, 8 l", "garden shears, 20 cm",
      "seed tray, 24 cells", "vegetable seeds, 5 kinds", "garden hose, 20 m",
      "plant stakes, 10 pieces"}},
    {"SPT",
     80,
     kSummer,
     "filter bottle",
     "bottle filters",
     30,
     &kGoods,
     {"tennis racket, 270 g", "tennis balls, 4 pieces", "yoga mat, 6 mm", "swimming goggles, adult",
      "bicycle tube, 28 inch", "tyre levers, 3 pieces", "running socks, 3 pairs",
      "skipping rope, 3 m"}},
    {"KID",
     75,
     kDecember,
     "toy camera",
     "camera paper rolls",
     28,
     &kGoods,
     {"wooden train, 12 pieces", "train tracks, 20 pieces", "building bricks, 200 pieces",
      "teddy bear, 30 cm", "doll, 40 cm", "doll clothes, 3 pieces", "puzzle, 100 pieces",
      "spinning top, tin"}},
    {"GFT",
     75,
     kDecember,
     "scent lamp",
     "scent oil",
     25,
     &kGoods,
     {"gift box, 20 cm", "ribbon, 10 m", "photo frame, 13 x 18 cm", "scented candle, 200 g",
      "greeting cards, 8 pieces", "envelopes, 25 pieces", "string of lights, 5 m",
      "paper stars, 12 pieces"}},
    {"KIT",
     70,
     kEven,
     "water filter jug",
     "water filters",
     30,
     &kGoods,
     {"frying pan, 28 cm", "spatula, 32 cm", "mixing bowl, 3 litres", "kitchen scales, 5 kg",
      "cake tin, 26 cm", "baking paper, 20 sheets", "chopping board, 30 cm",
      "tea towels, 3 pieces"}},
}};

std::string ordinaryLabel(const Range& range, std::size_t rank) {
  const std::size_t words = rank % (kNouns * kVariants);
  const std::size_t edition = rank / (kNouns * kVariants);
  std::string label =
      fmt::format("{} {}", (*range.variants)[words / kNouns], range.nouns[words % kNouns]);
  if (edition > 0) label += fmt::format(", edition {}", edition + 1);
  return label;
}

void appendFamily(const Range& range, std::uint32_t model, std::vector<Product>& products) {
  const auto refill = static_cast<ProductId>(products.size() + 1);
  const std::string name = fmt::format("{} model {}", range.starter, model);
  products.push_back({{}, name, refill, {}, 0});
  products.push_back({{}, fmt::format("{} for {}", range.refill, name), {}, {}, range.refillDays});
}

// The running sums stay far below 2^32: 2^20 times the sum of 1/2 .. 1/8400.
void appendOrdinary(const Range& range, std::size_t count, Department& department,
                    std::vector<Product>& products) {
  constexpr std::uint32_t kUnit = 1U << 20U;
  std::uint32_t sum = 0;
  for (std::size_t rank = 0; rank < count; ++rank) {
    Product product{{}, ordinaryLabel(range, rank), {}, {}, 0};
    if (rank % 4 == 0 && rank + 1 < count)
      product.companion = static_cast<ProductId>(products.size() + 1);
    products.push_back(std::move(product));
    sum += kUnit / static_cast<std::uint32_t>(rank + 2);
    department.weights.push_back(sum);
  }
}

}  // namespace

ShopCatalogue::ShopCatalogue(std::size_t products) {
  assert(products >= kFewestProducts && products <= kMostProducts);
  products_.reserve(products);
  for (std::size_t d = 0; d < kRanges.size(); ++d) {
    const Range& range = kRanges[d];
    const std::size_t size = products / kRanges.size() + (d < products % kRanges.size() ? 1 : 0);
    Department department{range.share, range.season, 0, 0, 0, {}};
    department.first = static_cast<ProductId>(products_.size());
    department.families = static_cast<std::uint32_t>(std::clamp<std::size_t>(size / 16, 1, 12));
    for (std::uint32_t model = 1; model <= department.families; ++model)
      appendFamily(range, model, products_);
    department.ordinary = static_cast<ProductId>(products_.size());
    appendOrdinary(range, size - std::size_t{2} * department.families, department, products_);
    for (std::size_t p = department.first; p < products_.size(); ++p)
      products_[p].code = fmt::format("{}-{:03}", range.code, p - department.first + 1);
    departments_.push_back(std::move(department));
  }
}

}  // namespace orbseq
