// Other developers' libraries in SpringBoard: AppList and the media widgets. Leaves out their
// looks, and of each widget all but the control that opens the app that plays.
#include "sim/core/device.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/string.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/springboard/result_word.hpp"

namespace sim {

namespace {

class ALApplicationList final : public Object {
 public:
  using Object::Object;
  Ref<NSDictionary> applications() {
    auto names = makeDictionary(process);
    for (const App& app : process.device.state.apps)
      if (app.listed) names->set(app.identifier, makeString(process, app.name).get());
    return names;
  }
};

Object* sharedList(Class& cls) {
  return &cls.process.shared<ALApplicationList>("ALApplicationList");
}

}  // namespace

ClassDefinition defineALApplicationList() {
  auto definition =
      ClassDefinition::of<ALApplicationList>("ALApplicationList", "NSObject", Home::springBoard());
  definition.mainThreadOnly(false);
  definition.classMethod("sharedApplicationList", &sharedList);
  definition.method("applications", &ALApplicationList::applications);
  return definition;
}

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
