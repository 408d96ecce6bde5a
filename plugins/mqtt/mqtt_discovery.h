// What hubs of home automation are told of a logger's channels, so that they show them by themselves. Pure functions, any thread.
#pragma once

#include <string>
#include <vector>

#include "plugins/mqtt/mqtt_broker.h"

namespace mqtt {

// A message for each channel, which the broker keeps. `topic` is the logger's, `availability` where the station's state stands.
std::vector<Message> DiscoveryOf(const Settings& settings, const CSinkSource& source, const std::string& topic,
                                 const std::string& availability);

}  // namespace mqtt
