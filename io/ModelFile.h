// Models in files, in every form.
//
// Reading. The form is told by the content. A lattice document, or the lattice in a PMML document,
// is read whole, its highest level included; labels of items that it does not hold are dropped;
// what the document says of the minimum support becomes the lattice's reduction threshold. Labels
// are the document's own and those of the file beside the model (io/modelLabels.h).
//
// Writing. Documents are closed by one more, empty level, so that the scoring module, which hides
// the highest level, answers from all that is stored, and carry the labels. For the other forms the
// labels go into the file beside the model. A former such file that the model does not need is
// removed, so that no other model's labels are taken for its own. Every file is
// replaced as a whole (io/AtomicFile.h); model and labels are two files, and a crash between the
// two can leave a new model with old labels.
//
// Errors: InputError when the content is bad, naming the place; QuException for documents, naming
// file, line and column; FileError and OrbScore::EnvironmentError when files cannot be read or
// written; std::bad_alloc.
// Threads: any number, each with its own model.

#ifndef IO_MODELFILE_H_
#define IO_MODELFILE_H_

#include <iosfwd>
#include <string>

#include "host/DocumentLimits.h"
#include "io/Model.h"
#include "io/ModelForm.h"

namespace OrbScore {
class SafeDocument;
}

namespace orbseq {

// `path` "-" is standard input. The limits are those of documents.
Model readModel(const std::string& path, const OrbScore::DocumentLimits& limits = {});

// The model as the scoring module answers from it: of a document, without its highest level.
Model readScoredModel(const std::string& path, const OrbScore::DocumentLimits& limits = {});

// The stored model as the document that the scoring module is handed: the file itself where it is a
// document, else one written from it, with its labels.
OrbScore::SafeDocument readDocument(const std::string& path,
                                    const OrbScore::DocumentLimits& limits = {});

// The model in that form, without the labels where the form has no room for them. The caller
// flushes and checks the stream.
void writeModel(std::ostream& os, const Model& model, ModelForm form);

// Whether the form itself holds the labels, and whether a model saved so keeps them somehow.
bool hasRoomForLabels(ModelForm form) noexcept;
bool keepsLabels(const std::string& path, ModelForm form);

// Replaces the file, and the file of labels beside it. True when a former file of labels was
// removed.
bool saveModel(const std::string& path, const Model& model, ModelForm form);

}  // namespace orbseq

#endif  // IO_MODELFILE_H_
