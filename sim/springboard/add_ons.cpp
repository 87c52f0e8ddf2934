// Other developers' media widgets in SpringBoard. Leaves out their looks, and of each widget all
// but the control that opens the app that plays.
#include "sim/core/device.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/springboard/result_word.hpp"

namespace sim {

ClassDefinition defineAuxoCollectionView() {
  auto definition =
      ClassDefinition::of<Object>("AuxoCollectionView", "UIView", Home::addOn("Auxo"));
  definition
      .code(leavingWord<Object*, Object*>("activateApplicationWithDisplayIdentifier:fromCell:"))
      .effect();
  return definition;
}

ClassDefinition defineAuxoCell() {
  return ClassDefinition::of<Object>("AuxoCell", "UIView", Home::addOn("Auxo"));
}

ClassDefinition defineMPMiniPlayerActionsDelegate() {
  auto definition = ClassDefinition::of<Object>("MPMiniPlayerActionsDelegate", "NSObject",
                                                Home::addOn("MiniPlayer"));
  definition.code(leavingWord<>("openNowPlayingApp")).effect();
  return definition;
}

}  // namespace sim
