#include "scoring/GiveMyTranslator.h"

#include <exception>

#include "scoring/SequentialTranslator.h"

OrbScore::ScoreTranslator* GiveMyTranslator() {
  try {
    return new OrbQuillon_830::SequentialTranslator;
  } catch (const std::exception&) {  // nothing may pass a C entry
    return nullptr;
  }
}
