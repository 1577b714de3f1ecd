// Whether the embedded firmware images are the stand-ins that only idle: loaded into a real board they would stop it.
#ifndef SORVANE_TOOLS_STAND_IN_H
#define SORVANE_TOOLS_STAND_IN_H

#include "protocol/operation.h"

namespace tools
{

bool isStandIn(protocol::Model model);

/// How to supply the vendor's images, a sentence.
extern const char *const howToSupplyImages;

}  // namespace tools

#endif
