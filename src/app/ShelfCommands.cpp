#include "app/ShelfCommands.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cerrno>
#include <cstring>
#include <set>
#include <utility>
#include <unistd.h>

#include "app/CommandLine.h"
#include "ingest/DropIngest.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/Scheduler.h"
#include "model/ShelfStore.h"
#include "shelf/ShelfWindowController.h"

namespace mosswick {

namespace {

// Bounds a slice of `add` by count as well as by time, so a slow clock read never lets one
// slice run long, and tests can see the slicing.
constexpr size_t kPathsPerSlice = 256;

QByteArray errorLine(const QByteArray& text) { return QByteArray("mosswick: ").append(text).append('\n'); }

bool isUtf8(const QByteArray& bytes) { return QString::fromUtf8(bytes).toUtf8() == bytes; }

// A path as JSON: the string (lossy only where the bytes are not UTF-8), and then the exact bytes
// in base64 beside it.
void insertPath(QJsonObject& object, const QString& key, const std::optional<QUrl>& url) {
    const std::optional<std::filesystem::path> path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    if (!path) {
        object.insert(key, QJsonValue::Null);
        return;
    }
    const QByteArray bytes = LocalPath::bytes(*path);
    object.insert(key, QString::fromUtf8(bytes));
    if (!isUtf8(bytes)) object.insert(key + QStringLiteral("Base64"), QString::fromLatin1(bytes.toBase64()));
}

QByteArray kindOf(const ShelfItem& item) {
    if (item.isPromised) return "promise";
    if (item.webURL) return "link";
    return item.isDirectory() ? "folder" : "file";
}

QByteArray stagedPathBytes(const ShelfItem& item) {
    const std::optional<std::filesystem::path> path =
        item.stagedURL ? LocalPath::fromUrl(*item.stagedURL) : std::nullopt;
    return path ? LocalPath::bytes(*path) : QByteArray();
}

}  // namespace

// One `add`: the paths turned into items a slice at a time, then put on the shelf together.
class ShelfCommands::AddRun final : public Run {
public:
    AddRun(ShelfCommands& owner, std::vector<QByteArray> paths, Respond respond)
        : owner_(owner), paths_(std::move(paths)), respond_(std::move(respond)) {
        if (paths_.size() >= 2) batchID_ = QUuid::createUuid();
        items_.reserve(paths_.size());
        staging_.reserve(paths_.size());
    }

    void step() override {
        const IngestServices& ingest = owner_.services_.ingest;
        const double start = ingest.scheduler.now();
        const size_t end = std::min(paths_.size(), next_ + kPathsPerSlice);
        while (next_ < end && ingest.scheduler.now() - start < kSliceSeconds) {
            const QByteArray& path = paths_[next_++];
            if (::access(path.constData(), R_OK) != 0) {
                reply_.err.append(errorLine(
                    QByteArray("cannot add ").append(path).append(": ").append(std::strerror(errno))));
                continue;
            }
            // The shelf would trim these away at once, before any copy is made.
            if (limit_ >= 1 && qint64(items_.size()) >= limit_) {
                ++beyondLimit_;
                continue;
            }
            items_.push_back(DropIngest::fileItem(LocalPath::fromBytes(path), std::nullopt, batchID_, types_,
                                                  staging_, ingest));
        }
        if (next_ < paths_.size()) {
            task_ = ingest.scheduler.after(0, [this] { step(); });
            return;
        }
        finish();
    }

private:
    void finish() {
        const IngestServices& ingest = owner_.services_.ingest;
        if (beyondLimit_ > 0)
            reply_.err.append(errorLine(QByteArray("the shelf keeps at most ")
                                            .append(QByteArray::number(limit_))
                                            .append(" items (see its settings): the last ")
                                            .append(QByteArray::number(qint64(beyondLimit_)))
                                            .append(" paths were left off")));
        if (items_.size() == 1) {  // one of several made it: no stack of one
            items_.front().batchID.reset();
            staging_.front().item.batchID.reset();
        }
        if (!items_.empty()) {
            ingest.store.add(std::move(items_));
            FileItems::stageLater(std::move(staging_), ingest);
        }
        reply_.exitCode =
            int(reply_.err.isEmpty() ? CommandLine::ExitCode::ok : CommandLine::ExitCode::partly);
        Respond respond = std::move(respond_);
        CommandReply reply = std::move(reply_);
        owner_.finished(this);  // deletes this
        respond(std::move(reply));
    }

    ShelfCommands& owner_;
    std::vector<QByteArray> paths_;
    Respond respond_;
    size_t next_ = 0;
    const qint64 limit_ = owner_.services_.ingest.preferences.maximumItemCount();
    size_t beyondLimit_ = 0;
    std::optional<QUuid> batchID_;
    TypeByName types_;
    std::vector<ShelfItem> items_;
    std::vector<FileItems::Staging> staging_;
    CommandReply reply_;
    ScheduledTask task_;
};

// One `list`: a snapshot of the shelf written out a slice at a time (ten thousand items take longer
// than a frame to describe).
class ShelfCommands::ListRun final : public Run {
public:
    ListRun(ShelfCommands& owner, bool json, Respond respond)
        : owner_(owner), items_(owner.services_.store.items()), json_(json), respond_(std::move(respond)) {
        if (json_) reply_.out = "[";
    }

    void step() override {
        Scheduler& scheduler = owner_.services_.ingest.scheduler;
        const double start = scheduler.now();
        while (next_ < items_.size() && scheduler.now() - start < kSliceSeconds) {
            const ShelfItem& item = items_[next_++];
            if (json_)
                reply_.out.append(next_ == 1 ? "\n  " : ",\n  ")
                    .append(QJsonDocument(itemJson(item)).toJson(QJsonDocument::Compact));
            else
                reply_.out.append(itemLine(item));
        }
        if (next_ < items_.size()) {
            task_ = scheduler.after(0, [this] { step(); });
            return;
        }
        if (json_) reply_.out.append(items_.empty() ? "]\n" : "\n]\n");
        Respond respond = std::move(respond_);
        CommandReply reply = std::move(reply_);
        owner_.finished(this);  // deletes this
        respond(std::move(reply));
    }

private:
    ShelfCommands& owner_;
    const std::vector<ShelfItem> items_;
    const bool json_;
    Respond respond_;
    size_t next_ = 0;
    CommandReply reply_;
    ScheduledTask task_;
};

ShelfCommands::ShelfCommands(Services services) : services_(std::move(services)) {
    QObject::connect(&services_.store, &ShelfStore::restored, &observations_, [this] {
        for (auto& [arguments, respond] : std::exchange(waitingForRestore_, {}))
            run(arguments, std::move(respond));
    });
}

ShelfCommands::~ShelfCommands() = default;

void ShelfCommands::run(const std::vector<QByteArray>& arguments, Respond respond) {
    using CommandLine::Verb;
    const CommandLine::Invocation invocation = CommandLine::parse(arguments);
    if (invocation.kind == CommandLine::Invocation::Kind::usageError) {
        respond({int(CommandLine::ExitCode::usage), {}, errorLine(invocation.error.toUtf8())});
        return;
    }
    if (invocation.kind != CommandLine::Invocation::Kind::command) {  // launched again
        if (services_.reopen) services_.reopen();
        respond({});
        return;
    }
    const CommandLine::Command& command = invocation.command;
    ShelfStore& store = services_.store;
    // Answered from a part of the shelf, these would list or act on too little; adding is merged
    // with the saved items when they arrive, and the rest does not look at the items.
    const bool readsTheShelf = command.verb == Verb::list || command.verb == Verb::remove ||
                               command.verb == Verb::clear || command.verb == Verb::restore;
    if (readsTheShelf && !store.isRestored()) {
        waitingForRestore_.emplace_back(arguments, std::move(respond));
        return;
    }
    CommandReply reply;
    switch (command.verb) {
        case Verb::add:
            start(std::make_unique<AddRun>(*this, command.operands, std::move(respond)));
            return;
        case Verb::paste:
            if (!services_.addClipboardContents || !services_.addClipboardContents())
                reply.err = errorLine("the clipboard holds nothing to add");
            break;
        case Verb::show:
            services_.controller.summon();
            break;
        case Verb::hide:
            services_.controller.escape();
            break;
        case Verb::toggle:
            services_.controller.toggle();
            break;
        case Verb::restore:
            if (store.removalHistory().empty()) reply.err = errorLine("nothing to restore");
            store.restoreLastRemoved();
            break;
        case Verb::clear:
            store.removeAll();
            break;
        case Verb::remove: {
            std::set<QUuid> ids;
            for (const QByteArray& word : command.operands) {
                const QUuid id = *parseUuid(QString::fromUtf8(word));  // parse() checked the form
                const bool onShelf = std::any_of(store.items().begin(), store.items().end(),
                                                 [&](const ShelfItem& item) { return item.id == id; });
                if (onShelf)
                    ids.insert(id);
                else
                    reply.err.append(
                        errorLine(QByteArray("no item with ID ").append(word).append(" on the shelf")));
            }
            if (!ids.empty()) store.remove(ids, true);
            break;
        }
        case Verb::list:
            start(std::make_unique<ListRun>(*this, command.json, std::move(respond)));
            return;
        case Verb::quit:
            store.flush();  // saved before the caller hears back
            respond({});
            if (services_.quit) services_.quit();
            return;
    }
    reply.exitCode = int(reply.err.isEmpty() ? CommandLine::ExitCode::ok : CommandLine::ExitCode::partly);
    respond(std::move(reply));
}

void ShelfCommands::start(std::unique_ptr<Run> run) {
    runs_.push_back(std::move(run));
    runs_.back()->step();
}

void ShelfCommands::finished(Run* run) {
    std::erase_if(runs_, [run](const std::unique_ptr<Run>& entry) { return entry.get() == run; });
}

QJsonObject ShelfCommands::itemJson(const ShelfItem& item) {
    QJsonObject object;
    object.insert(QStringLiteral("id"), uuidString(item.id));
    object.insert(QStringLiteral("name"), item.displayName);
    object.insert(QStringLiteral("kind"), QString::fromLatin1(kindOf(item)));
    object.insert(QStringLiteral("contentType"), item.contentTypeIdentifier);
    object.insert(QStringLiteral("size"), item.byteSize);
    insertPath(object, QStringLiteral("stagedPath"), item.stagedURL);
    insertPath(object, QStringLiteral("originalPath"), item.reachableOriginURL());
    object.insert(QStringLiteral("webURL"),
                  item.webURL ? QJsonValue(item.webURL->toString(QUrl::FullyEncoded)) : QJsonValue());
    object.insert(QStringLiteral("batchID"),
                  item.batchID ? QJsonValue(uuidString(*item.batchID)) : QJsonValue());
    object.insert(QStringLiteral("addedAt"), item.addedAt.toDateTime().toUTC().toString(Qt::ISODateWithMs));
    return object;
}

QByteArray ShelfCommands::itemLine(const ShelfItem& item) {
    // A tab or a line break in a name would split the line: shown as a blank.
    QByteArray name = item.displayName.toUtf8();
    name.replace('\t', ' ').replace('\n', ' ');
    return uuidString(item.id)
        .toUtf8()
        .append('\t')
        .append(name)
        .append('\t')
        .append(kindOf(item))
        .append('\t')
        .append(QByteArray::number(item.byteSize))
        .append('\t')
        .append(stagedPathBytes(item))
        .append('\n');
}

}  // namespace mosswick
