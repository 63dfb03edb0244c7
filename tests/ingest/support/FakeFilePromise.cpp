#include "support/FakeFilePromise.h"

#include "support/TestFolders.h"

namespace mosswick::testing {

std::filesystem::path FakeFilePromise::write(const std::string& contents, std::filesystem::path name) {
    const std::filesystem::path file = destination_->folder / (name.empty() ? destination_->fileName : name);
    writeFile(file, contents);
    return file;
}

}  // namespace mosswick::testing
