#include "sim/scenario/shown_page.hpp"

#include <nlohmann/json.hpp>

namespace sim::scenario {

namespace {

using Json = nlohmann::ordered_json;

const char* kindOf(const ShownRow& row) {
  switch (row.cell) {
    case Cell::Switch:
      return "switch";
    case Cell::Button:
      return "button";
    case Cell::ListItem:
      return "app";
    default:
      return "chooser";
  }
}

Json json(const ShownRow& row) {
  const Json value = row.cell == Cell::Switch ? Json(row.value == "YES") : Json(row.value);
  return {{"kind", kindOf(row)},
          {"label", row.label},
          {"value", value},
          {"enabled", row.enabled},
          {"checked", row.checked}};
}

Json json(const ShownGroup& group) {
  Json rows = Json::array();
  for (const ShownRow& row : group.rows) rows.push_back(json(row));
  return {{"title", group.title}, {"footer", group.footer}, {"rows", rows}};
}

}  // namespace

nlohmann::ordered_json asJson(const ShownPage& page) {
  Json groups = Json::array();
  for (const ShownGroup& group : page.groups) groups.push_back(json(group));
  return {{"title", page.title}, {"button", page.button}, {"groups", groups}};
}

}  // namespace sim::scenario
