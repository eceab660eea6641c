// The lattice document.

#include <exception>
#include <memory>

#include "lattice/LatticeDocument.h"
#include "lattice/LatticeElement.h"
#include "lattice/SequenceDictionary.h"
#include "lattice/exportParts.h"
#include "lattice/statusCodes.h"
#include "xml/WriteTree.h"
#include "xml/XMLDocType.h"

namespace orbseq {

void writeLatticeDocument(std::ostream& os, const SequenceDictionary& dictionary,
                          const LatticeDocumentOptions& options) {
  const LatticeElement lattice(dictionary, options);
  const std::unique_ptr<OrbXML_830::XMLDocType> docType(
      OrbXML_830::XMLDocType::Create("SequentialAssociationLattice", "sequentiallattice.dtd", 0));

  const ElementPtr root = makeElement("SequentialAssociationLattice");
  root->AddAttribute("version", kLatticeVersion);
  addHeader(*root, "Carma model for sequential association lattice");
  Element& fields = addElement(*root, "DataDictionary");
  fields.AddAttribute("numberOfFields", 1);
  Element& item = addElement(fields, "DataField");
  item.AddAttribute("name", "item");
  item.AddAttribute("optype", "categorical");
  addElement(*root, lattice.make());

  OrbXML_830::WriteTree(os, docType.get(), root.get(), true);
}

}  // namespace orbseq

namespace SEQUENCE_NAMESPACE_800 {

OrbCommon_830::OrbStatus SequenceDictionary::ExportLatticeXML(std::ostream& os,
                                                              double minimumSupport) const {
  try {
    orbseq::writeLatticeDocument(os, *this, {.minimumSupport = minimumSupport});
  } catch (const std::exception&) {
    return {kFailure, false};
  }
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800
