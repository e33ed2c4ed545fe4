#include "tool/Menu.h"

#include <iostream>

#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Reports.h"

namespace cairnset {

void listMenu() {
  std::cout << "\n"
               "Commands:\n"
               "\t1) List Presets\n"
               "\t2) Check Dependencies\n"
               "\t3) List Parents\n"
               "\t4) Auto-Sort into subdirectories\n"
               "\n"
               "\t5) Check file names\n"
               "\t6) Fix file names\n"
               "\n"
               "\n"
               "\t0) Quit\n"
               "\n";
}

int doInteractive() {
  for (;;) {
    listMenu();
    std::cout << "-> " << std::flush;
    int command = 0;
    std::cin >> command;
    // A number at the end of the input, without a line end, is not run either.
    if (!std::cin.good() || command > 9 || command <= 0) return 0;
    switch (command) {
      case 1:
        listPresets();
        break;
      case 2:
        listAllDependencies();
        break;
      case 3:
        listParents();
        break;
      case 4:
        sortIntoSubdirectories();
        break;
      case 5:
        checkFilenames();
        break;
      case 6:
        fixFilenames();
        break;
      default:
        std::cout << "unrecognized command: " << command << '\n';
    }
  }
}

}  // namespace cairnset
