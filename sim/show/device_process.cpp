#include "sim/show/device_process.hpp"

#include <iostream>
#include <nlohmann/json.hpp>

#include "sim/show/played_device.hpp"

namespace sim::show {

namespace {

// Texts may hold any bytes; what is no UTF-8 must not end the device.
void write(std::ostream& out, const Json& object) {
  out << object.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

void obey(PlayedDevice& device, const Json& request, std::ostream& out) {
  const auto number = request.at("play").get<std::int64_t>();
  const auto lines = request.at("lines").get<Lines>();
  const auto wrong = device.play(
      lines,
      [&](std::size_t from) {
        write(out, {{"play", number}, {"from", from}});
      },
      [&](const Json& step) {
        Json told = {{"play", number}};
        told.update(step);
        write(out, told);
      });
  if (wrong)
    write(out, {{"play", number}, {"wrong", {{"line", wrong->line}, {"message", wrong->message}}}});
  else
    write(out, {{"play", number}, {"done", true}});
  out.flush();
}

}  // namespace

void serveDevice(LibraryLoader& loader, const std::filesystem::path& settingsPage, std::istream& in,
                 std::ostream& out) {
  PlayedDevice device(loader, settingsPage);
  std::string line;
  while (std::getline(in, line)) {
    try {
      obey(device, Json::parse(line), out);
    } catch (const nlohmann::json::exception& error) {
      write(out, {{"error", error.what()}});
      out.flush();
    }
  }
}

}  // namespace sim::show
