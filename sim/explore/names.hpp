// The names that drawn scenarios use: settings, signals, apps, versions, add-ons. Written down a
// second time here, not taken from the library: what it calls by a wrong name is to be found out.
// Leaves out apps that differ in nothing from these.
// docs/decisions.md: Keys are written twice
#pragma once
#include <string>
#include <vector>

namespace sim::explore {

inline const std::vector<std::string> kSwitches = {
    "iea9AQXrEmhSZ4u",  "4sySMd4CfPOr0F",    "KwI68FtaZGgSizb", "ljyr9pMzliGkTNvfm",
    "LyyY0YZw4enaXR6S", "AiPVzGZ3tdh2fBpXy", "I9gqmWG8wXu6"};
inline const std::vector<std::string> kTexts = {"2I8UQMOAwU5nnNZt", "RjNkaiHs98230Xx"};
inline const std::vector<std::string> kMarkers = {"feo63OPBmERAd2000UpdRdCAND", "hasShownWAL"};
inline const std::vector<std::string> kSignals = {
    "bfaK8ayWXeXMQum",  "QjnUR4g9fc9hLq",  "VNutj2BhJMTGTwVk", "FejJ91yPhXo8E",
    "GYbIKwUwyBsCan1l", "YHePE3bJB3diJ1T", "RjZoLhphi82WYz"};

inline const std::vector<std::string> kPlayers = {"com.spotify.client", "com.apple.podcasts"};
inline const std::vector<std::string> kApps = {"com.spotify.client",        "com.apple.podcasts",
                                               "com.garmin.connect.mobile", "com.pandora",
                                               "com.example.notes",         "com.apple.Music"};

// Every threshold, and what lies just beside it.
inline const std::vector<std::string> kVersions = {
    "847.19",  "847.2",   "847.23", "847.24",  "899.99", "900.0",  "1145.14",
    "1145.15", "1240.09", "1240.1", "1242.13", "1280.0", "1280.01"};

inline const std::vector<std::string> kDaemons = {"BTLEServer", "iapd"};

inline const std::vector<std::string> kAddOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};

}  // namespace sim::explore
