#include "support/VisitedNodes.h"

#include <tinyxml.h>

// The linker leads all calls of the parser's two operations here.

namespace {

uint64_t visited = 0;

const TiXmlElement* counted(const TiXmlElement* element) {
    visited += element != nullptr;
    return element;
}

}  // namespace

extern "C" {
const TiXmlElement* __real__ZNK9TiXmlNode17FirstChildElementEv(const TiXmlNode* node);
const TiXmlElement* __real__ZNK9TiXmlNode18NextSiblingElementEv(const TiXmlNode* node);

const TiXmlElement* __wrap__ZNK9TiXmlNode17FirstChildElementEv(const TiXmlNode* node) {
    return counted(__real__ZNK9TiXmlNode17FirstChildElementEv(node));
}
const TiXmlElement* __wrap__ZNK9TiXmlNode18NextSiblingElementEv(const TiXmlNode* node) {
    return counted(__real__ZNK9TiXmlNode18NextSiblingElementEv(node));
}
}

uint64_t nodesVisited() {
    return visited;
}
