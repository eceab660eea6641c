// Models for the tests of model files: from seeded worlds, with labels that need quoting.

#ifndef TESTS_IO_MODELSAMPLES_H_
#define TESTS_IO_MODELSAMPLES_H_

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "io/Model.h"
#include "io/ModelForm.h"
#include "tests/support/World.h"

namespace orbseq::test {

constexpr std::array<ModelForm, 4> kEveryForm = {ModelForm::kDocument, ModelForm::kPmml,
                                                 ModelForm::kBinary, ModelForm::kObjectXml};

// A model with a copy of the dictionary.
Model modelOf(const SequenceDictionary& dictionary, ItemLabelMap labels = {});

// Closed and well-formed, with a reduction threshold and no time settings, which documents lack.
Model worldModel(std::uint32_t seed, ItemLabelMap labels = {});

// Four sequences of 10 customers.
Model smallModel(ItemLabelMap labels = {});

// Labels with commas, quotes, line ends, blanks, a backslash and letters of several scripts.
ItemLabelMap awkwardLabels();

std::string bytesOf(const Model& model, ModelForm form);

// Everything that the lattice holds of its sequences, by their text; it does not tell table sizes.
std::map<std::string, std::string> contentsOf(const orbseq::Lattice& lattice);

}  // namespace orbseq::test

#endif  // TESTS_IO_MODELSAMPLES_H_
