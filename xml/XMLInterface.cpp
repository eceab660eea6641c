#include "xml/XMLInterface.h"

namespace OrbXML_830 {

XMLInterface::~XMLInterface() = default;

}  // namespace OrbXML_830
