// What SpringBoard does when it boots, and each app when its process comes up. Stands in for their
// main functions; leaves out everything on the way that no hook meets.
#include "sim/apps/apps.hpp"
#include "sim/core/device.hpp"
#include "sim/platform/telling.hpp"
#include "sim/springboard/springboard.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

void startUpSpringBoard(Process& springBoard) {
  Object* application = sharedApplication(springBoard);
  springBoard.sendIfAnswered(application, "init");
  if (Class* cls = springBoard.findClass("SBAppSuggestionManager")) {
    const Ref<Object> fresh = springBoard.allocateInstance(*cls);
    const Value manager = springBoard.sendIfAnswered(fresh.get(), "init");
    if (Object* made = springBoard.object(manager.bits)) springBoard.kept.emplace_back(made);
  }
  if (application)
    springBoard.sendIfAnswered(
        application, "applicationDidFinishLaunching:", {Value::object(application->address)});
}

void tellProcessLaunched(Process& springBoard, const std::string& app) {
  springBoard.sendIfAnswered(applicationObject(springBoard, app),
                             "processDidLaunch:", {objectArgument(springBoard)});
}

void startUpApp(Process& app) {
  if (app.identifier == kSpotify) startSpotify(app);
  if (app.identifier == kPodcasts) startPodcasts(app);
  if (app.identifier == kGarmin) startGarmin(app);
}

}  // namespace sim
