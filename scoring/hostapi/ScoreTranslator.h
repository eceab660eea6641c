// Turns the DOM element of a model into a model that scores. A plug-in's entry hands one to the
// host, which owns and deletes it.

#ifndef SCORING_HOSTAPI_SCORETRANSLATOR_H_
#define SCORING_HOSTAPI_SCORETRANSLATOR_H_

#include <string>

#include "scoring/hostapi/DomTypes.h"
#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ScoreModel;

class ORBSCORE_EXPORT ScoreTranslator {
 public:
  virtual ~ScoreTranslator();

  // Reads the model below `modelElement`. `encoding` names the encoding of the narrow texts that
  // the model hands out (labels, version). The caller owns the model, which keeps nothing of the
  // document. Throws QuException for a document that is refused.
  // Threads: one call at a time on one translator.
  virtual ScoreModel* ParseFromTree(DOMElement* modelElement, const std::string& encoding) = 0;

 protected:
  ScoreTranslator() = default;
  ScoreTranslator(const ScoreTranslator&) = default;
  ScoreTranslator& operator=(const ScoreTranslator&) = default;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCORETRANSLATOR_H_
