// The description as a page for people, docs/wire.md.
#ifndef SORVANE_PROTOCOL_DOCUMENT_H
#define SORVANE_PROTOCOL_DOCUMENT_H

#include <string>

namespace protocol
{

std::string wireDocument();

}  // namespace protocol

#endif
