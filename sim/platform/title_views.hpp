// The title views that live in SpringBoard, by the names that scenarios give them. Stands in for
// the screens that have such views (lock screen, Control Center); leaves out drawing.
#pragma once
#include "sim/core/class_definition.hpp"
#include "sim/springboard/media.hpp"

namespace sim {

class TitleViews final : public Object {
 public:
  using Object::Object;
  std::map<std::string, Ref<MPUMediaControlsTitlesView>> all;
};

std::map<std::string, Ref<MPUMediaControlsTitlesView>>& titleViews(Process& springBoard);

ClassDefinition defineTitleViews();

}  // namespace sim
