// Entry of logmgr: refuse a second copy, bind the catalogue, run the window.
#include <clocale>
#include <ios>
#include <string>

#include "app/app.h"
#include "app/constants.h"
#include "app/i18n.h"
#include "host/install_root.h"
#include "host/lock.h"

namespace {

// Building the App may write to std::cerr (no install root found) before any
// other file's initialisers have run: the standard streams come first.
const std::ios_base::Init kStreamsReady;

App& TheApp() {
  static App app;
  return app;
}

// Handlers reach the object through gApp, so it must exist before main runs.
[[maybe_unused]] const bool kAppBuilt = (gApp = &TheApp(), true);

}  // namespace

int main() {
  // Checked before any toolkit or locale call: a refused start never touches the display.
  const std::string programName(constants::kProgramShortName);
  if (EnsureSingleInstance(programName)) return 0;

  BindMessageCatalogue(FindInstallRoot());

  gApp->Run();
  return 0;
}
