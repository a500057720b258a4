#pragma once

/// Addresses on the maker's host. The host is set at deployment.
#define TARNWICK_WEB_HOST "https://www.fennelworks.example"

namespace tarnwick::app {

inline constexpr const char* MakerPage = TARNWICK_WEB_HOST "/mossgate.htm";
inline constexpr const char* HelpPage = TARNWICK_WEB_HOST "/mossgate.php?program=Tarnwick_help";
inline constexpr const char* UpdatePage =
    TARNWICK_WEB_HOST "/mossgate.php?program=checkversion&name=tarnwick&version=0.3.1a/";
inline constexpr const char* MailBox = "tarnwick@fennelworks.example";

}  // namespace tarnwick::app
