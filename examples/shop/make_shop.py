#!/usr/bin/env python3
"""Makes the example shop: lattice.xml, a model, and customers.csv, histories to score.

The shop sells coffee, tea and baked goods. Each of its 400 customers has a habit: what goes into
one basket, and what the next visit brings. The script draws their baskets from a seeded random
source, counts by brute force every sequence of up to four items that at least 10 customers (2.5 %)
have in common, and writes the counts as a lattice document. The same script writes the same bytes
on every machine.

    python3 make_shop.py            # writes into the script's folder
    python3 make_shop.py FOLDER     # writes elsewhere
"""

import pathlib
import random
import sys
from itertools import combinations
from xml.sax.saxutils import quoteattr

SEED = 2024
CUSTOMERS = 400
LEAST_CUSTOMERS = 10  # a sequence is stored when so many customers have it
MOST_ITEMS = 4        # items of a stored sequence

PRODUCTS = {
    101: "Espresso",
    102: "Cappuccino",
    103: "Flat white",
    104: "Filter coffee",
    105: "Coffee beans, 250 g",
    106: "Paper filters",
    201: "Earl Grey",
    202: "Green tea",
    203: "Milk for tea",
    204: "Tea strainer",
    301: "Butter croissant",
    302: "Cinnamon roll",
    303: "Baguette",
    304: "Cheesecake",
    305: "Scone with clotted cream",
}

# A habit: its share of the customers and its visits in order. A visit lists products with the
# probability that each is in the basket.
HABITS = [
    # Breakfast on the way to work; the ones who like it come back for a sweet.
    (0.30, [{102: 0.9, 301: 0.8}, {102: 0.8, 302: 0.6, 301: 0.4}, {102: 0.7, 302: 0.6, 304: 0.3}]),
    # Espresso drinkers who end up making it at home.
    (0.22, [{101: 0.9, 301: 0.3}, {101: 0.7, 105: 0.6}, {105: 0.7, 106: 0.4}]),
    # Filter coffee at home: beans and filters go together.
    (0.15, [{104: 0.8, 303: 0.4}, {105: 0.8, 106: 0.8}, {105: 0.7, 106: 0.5, 303: 0.4}]),
    # Tea in the afternoon.
    (0.20, [{201: 0.9, 305: 0.7}, {201: 0.7, 203: 0.6, 305: 0.5}, {204: 0.5, 203: 0.5}]),
    # The curious: a little of everything.
    (0.13, [{103: 0.7, 304: 0.5}, {202: 0.6, 302: 0.4}, {103: 0.5, 304: 0.4, 301: 0.3}]),
]
CHANCE_BUY = 0.06    # one more product, for no reason at all
CHANCE_LEAVE = 0.20  # a visit that does not happen

# Histories to score; each asks something that a person can judge.
ASKED = [
    ("Anna", "(102)"),
    ("Bruno", "(102 301)(102)"),
    ("Chloe", "(101)"),
    ("Dmitri", "(104)(105)"),
    ("Emma", "(201 305)"),
    ("Farid", "(201)(203)"),
    ("Grace", "(103)"),
    ("New customer", ""),
]


def draw_customers(source):
    customers = []
    for _ in range(CUSTOMERS):
        habit = source.choices(HABITS, weights=[share for share, _ in HABITS])[0]
        baskets = []
        for visit in habit[1]:
            basket = {item for item, chance in visit.items() if source.random() < chance}
            if source.random() < CHANCE_BUY:
                basket.add(source.choice(sorted(PRODUCTS)))
            if basket and source.random() >= CHANCE_LEAVE:
                baskets.append(frozenset(basket))
        customers.append(baskets)
    return customers


def contains(baskets, sequence):
    """Whether the item sets are found, in order, in different baskets (first fit suffices)."""
    at = 0
    for basket in baskets:
        if at < len(sequence) and set(sequence[at]) <= basket:
            at += 1
    return at == len(sequence)


def longer(sequence, item):
    """Every sequence with the item added to it, as (position, sequence): 2s where the item joins
    set s, 2s + 1 where it becomes the new set s."""
    for s, items in enumerate(sequence):
        if item not in items:
            grown = tuple(sorted(items + (item,)))
            yield 2 * s, sequence[:s] + (grown,) + sequence[s + 1:]
    for s in range(len(sequence) + 1):
        yield 2 * s + 1, sequence[:s] + ((item,),) + sequence[s:]


def count_levels(customers):
    """A dictionary per number of items: sequence -> number of customers that have it."""
    levels = [{(): len(customers)}]
    for _ in range(MOST_ITEMS):
        candidates = sorted({grown for sequence in levels[-1] for item in PRODUCTS
                             for _, grown in longer(sequence, item)})
        counted = {c: sum(contains(baskets, c) for baskets in customers) for c in candidates}
        levels.append({c: n for c, n in counted.items() if n >= LEAST_CUSTOMERS})
    return levels


def lattice_document(levels):
    items = sorted(PRODUCTS)
    item_id = {item: number for number, item in enumerate(items, 1)}
    sequences = [sequence for level in levels for sequence in sorted(level)]
    sets = sorted({items for sequence in sequences for items in sequence},
                  key=lambda s: (len(s), s))
    set_id = {items: number for number, items in enumerate(sets, 1)}
    stored = set(sequences)
    customers = levels[0][()]

    lines = [
        '<?xml version="1.0" encoding="UTF-8"?>',
        '<SequentialAssociationLattice version="1.0">',
        '<Header copyright="" description="Example: a shop for coffee, tea and baked goods">',
        '<Application name="make_shop.py" version="1.0"/>',
        '</Header>',
        '<DataDictionary numberOfFields="1">',
        '<DataField name="item" optype="categorical"/>',
        '</DataDictionary>',
        '<SeqAssociationLattice>',
        f'<SeqInputStats numberOfTransactions="{customers}" '
        f'minimumSupport="{LEAST_CUSTOMERS / customers!r}" maxSequenceSize="{len(levels)}" '
        f'numberOfItems="{len(items)}" numberOfSets="{len(sets)}" '
        f'numberOfSequences="{len(sequences)}"/>',
    ]
    lines += [f'<Item id="{item_id[i]}" value="{i}" mappedValue={quoteattr(PRODUCTS[i])}/>'
              for i in items]
    for members in sets:
        lines.append(f'<Itemset id="{set_id[members]}" numberOfItems="{len(members)}">')
        lines += [f'<ItemRef itemRef="{item_id[i]}"/>' for i in members]
        lines.append('</Itemset>')
    number = 0
    for size, level in enumerate(levels):
        lines.append(f'<LatticeLevel level="{size}" numberOfSequences="{len(level)}">')
        for sequence in sorted(level):
            number += 1
            lines.append(f'<Sequence id="{number}" support="{level[sequence] / customers!r}" '
                         f'occurrence="{level[sequence]}" numberOfSets="{len(sequence)}">')
            lines += [f'<ItemsetRef itemsetRef="{set_id[s]}"/>' for s in sequence]
            adjacent = sorted({(i, position) for i in items
                               for position, grown in longer(sequence, i) if grown in stored})
            lines.append(f'<SeqAdjacentList numberOfAdjacentItems="{len(adjacent)}">')
            lines += [f'<AdjacentItem itemRef="{item_id[i]}" position="{position}"/>'
                      for i, position in adjacent]
            lines += ['</SeqAdjacentList>', '</Sequence>']
        lines.append('</LatticeLevel>')
    # The module answers from the levels below the highest one, which therefore is empty.
    lines += [f'<LatticeLevel level="{len(levels)}" numberOfSequences="0"/>',
              '</SeqAssociationLattice>', '</SequentialAssociationLattice>', '']
    return "\n".join(lines)


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__)
    folder = folder if folder.is_dir() else folder.parent
    levels = count_levels(draw_customers(random.Random(SEED)))
    rows = ["customer,history"] + [f"{name},{history}" for name, history in ASKED] + [""]
    (folder / "lattice.xml").write_bytes(lattice_document(levels).encode("utf-8"))
    (folder / "customers.csv").write_bytes("\n".join(rows).encode("utf-8"))
    print("sequences of 0, 1, 2, ... items:", *(len(level) for level in levels))


if __name__ == "__main__":
    main()
