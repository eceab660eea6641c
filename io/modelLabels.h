// Labels of items: in a model's dictionary of variables, and in a file beside a model.
//
// The forms of a model that have no room for labels have them in a CSV file of the model's name
// and ".labels.csv", with the columns item and label. Every reader of models takes it into account
// where it is there; labels that stand in the model itself come first.

#ifndef IO_MODELLABELS_H_
#define IO_MODELLABELS_H_

#include <string>

#include "io/Model.h"

namespace OrbScore {
class ScoreDictionary;
}

namespace orbseq {

class AtomicFile;

// `dictionary` may be null. Names that are no item numbers, and empty labels, are left out.
ItemLabelMap labelsOf(const OrbScore::ScoreDictionary* dictionary);

// Beside the file that a symbolic link leads to.
std::string labelFileOf(const std::string& modelPath);

// Whether there was such a file. Throws FileError.
bool removeLabelsBeside(const std::string& modelPath);

// Adds the labels of the file beside the model, if there is one, for items without a label.
// Nothing for standard input. Throws InputError, FileError.
void addLabelsBeside(const std::string& modelPath, ItemLabelMap& labels);

void writeLabels(AtomicFile& file, const ItemLabelMap& labels);

}  // namespace orbseq

#endif  // IO_MODELLABELS_H_
