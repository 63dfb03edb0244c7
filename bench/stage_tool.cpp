// Runs one staging operation from the command line, so the benchmark scripts can time it against
// the reference tools process for process.
//   stage_tool stage SRC          copies SRC into a new item's folder and prints where
//   stage_tool stage-rw SRC       the same, starting the copy ladder at read/write
//   stage_tool size PATH          prints the deep size of PATH
#include <QUuid>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <variant>

#include "model/FileCopier.h"
#include "model/ItemStaging.h"

namespace {

int stage(const char* source, mosswick::FileCopier::Method firstRung) {
    using namespace mosswick;
    const auto staged = ItemStaging::stage(
        source, QUuid::createUuid(), [&](const std::filesystem::path& from, const std::filesystem::path& to) {
            return FileCopier::copy(from, to, firstRung);
        });
    if (const auto* failure = std::get_if<ItemStaging::Failure>(&staged)) {
        std::fprintf(stderr, "%s\n", failure->message.c_str());
        return 1;
    }
    std::printf("%s\n", std::get<std::filesystem::path>(staged).c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    using mosswick::FileCopier::Method;
    if (argc == 3 && std::strcmp(argv[1], "stage") == 0) return stage(argv[2], Method::clone);
    if (argc == 3 && std::strcmp(argv[1], "stage-rw") == 0) return stage(argv[2], Method::readWrite);
    if (argc == 3 && std::strcmp(argv[1], "size") == 0) {
        std::printf("%lld\n", static_cast<long long>(mosswick::ItemStaging::deepFileSize(argv[2])));
        return 0;
    }
    std::fprintf(stderr, "usage: stage_tool stage|stage-rw SRC | stage_tool size PATH\n");
    return 2;
}
