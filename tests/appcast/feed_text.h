#pragma once

#include <string>

namespace keyvora::appcast {

/// A feed with these items.
inline std::string feedOf(const std::string& items) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
<channel><title>keyvora</title>)" +
         items + "</channel></rss>";
}

/// An item of this version, with any other content.
inline std::string itemOf(const std::string& version, const std::string& rest = "") {
  return "<item><sparkle:version>" + version + "</sparkle:version>" + rest + "</item>";
}

}  // namespace keyvora::appcast
