// A plug-in for the loader's tests. Its model displays the attribute "label" of the element that
// it was read from; the attribute "fail" makes the translator fail in the way that it names.

#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>

#include "scoring/hostapi/BaseModel.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"

namespace {

class PluginModel : public OrbScore::BaseModel {
 public:
  explicit PluginModel(const std::string& label) : label_(label) {}

  OrbScore::OrbStatus GetScore(const OrbScore::ScoreCaseRecord*, OrbScore::ScoreResult*&,
                               bool) const override {
    return {};
  }
  void Display(std::ostream& os) const override { os << label_; }

 private:
  std::string label_;
};

// An exception whose type is nowhere but in this library.
class PluginError : public OrbScore::QuException {
 public:
  using QuException::QuException;
};

void failAs(const std::string& kind) {
  if (kind == "own") throw PluginError("Item[3]/@id: 7: outside 1..5");
  if (kind == "named") throw OrbScore::QuException("d.xml:1:2: bad: 7");
  if (kind == "memory") throw std::bad_alloc();
  if (kind == "standard") throw std::out_of_range("seven");
  if (kind == "number") throw 7;
  if (kind == "pointer") throw new std::out_of_range("eight");
  if (kind == "no pointer") throw static_cast<std::exception*>(nullptr);
}

class PluginTranslator : public OrbScore::BaseTranslator {
 public:
  OrbScore::ScoreModel* ParseFromTree(OrbScore::DOMElement* element,
                                      const std::string& encoding) override {
    CreateTranscoder(encoding);
    const std::string fail = GetTranscoder().transcodeTo(GetAttribute(element, u"fail"));
    failAs(fail);
    if (fail == "null") return nullptr;
    return new PluginModel(GetTranscoder().transcodeTo(GetAttribute(element, u"label")));
  }
};

}  // namespace

extern "C" ORBSCORE_EXPORT OrbScore::ScoreTranslator* GiveMyTranslator();

OrbScore::ScoreTranslator* GiveMyTranslator() { return new PluginTranslator; }
