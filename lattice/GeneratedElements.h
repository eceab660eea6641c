// Elements that are made while they are written: a node of a tree that stands for any number of
// siblings and holds none of them.
//
// The bytes are those of the same elements added to the parent one by one; the node itself writes
// nothing. Deliberate: a parent whose only child it is writes an end tag even when no element comes
// of it, so it is added only where there is one.
//
// Threads: as its generator.

#ifndef LATTICE_GENERATEDELEMENTS_H_
#define LATTICE_GENERATEDELEMENTS_H_

#include <functional>
#include <iosfwd>
#include <string>

#include "xml/XMLElement.h"

namespace orbseq {

class GeneratedElements final : public OrbXML_830::XMLElement {
 public:
  // Takes one element and is done with it when it returns.
  using Consumer = std::function<void(const OrbXML_830::XMLElement&)>;
  // Gives the elements in their order, the same at every call. What it refers to must outlive the
  // node and its clones.
  using Generator = std::function<void(const Consumer&)>;

  static GeneratedElements* Create(Generator generate);  // the caller's
  ~GeneratedElements() override;

  int ToString(std::string& out, OrbXML_830::ExportFormat& format) const override;
  int ToStream(std::ostream& os, OrbXML_830::ExportFormat& format, bool utf8) const override;
  GeneratedElements* Clone() const override;

 private:
  explicit GeneratedElements(Generator generate);

  Generator generate_;
};

}  // namespace orbseq

#endif  // LATTICE_GENERATEDELEMENTS_H_
