#pragma once

#include <string>

/// Addresses on the maker's host. The host is set at deployment.
#ifndef TARNWICK_WEB_HOST
#define TARNWICK_WEB_HOST "https://www.fennelworks.example"
#endif

namespace tarnwick::pages {

inline constexpr const char* MakerPage = TARNWICK_WEB_HOST "/mossgate.htm";
inline constexpr const char* HelpPage = TARNWICK_WEB_HOST "/mossgate.php?program=Tarnwick_help";
inline constexpr const char* UpdatePage =
    TARNWICK_WEB_HOST "/mossgate.php?program=checkversion&name=tarnwick&version=0.3.1a/";
inline constexpr const char* CollisionModelPage = TARNWICK_WEB_HOST "/physics-models.htm";
inline constexpr const char* MailBox = "tarnwick@fennelworks.example";

/// Whether a host was set: the domain of the default one is reserved for examples and leads nowhere.
inline bool HasWebHost() {
  return !std::string(TARNWICK_WEB_HOST).ends_with(".example");
}

/// The text of a CXHTMLStatic that shows `address` as a blue underlined link.
inline std::string LinkText(const std::string& address) {
  return "<u><font color=\"#0000ff\"><a href=" + address + ">" + address + "</a></font></u>";
}

}  // namespace tarnwick::pages
