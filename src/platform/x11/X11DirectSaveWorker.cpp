#include "platform/x11/X11DirectSaveWorker.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <set>

#include <QUrl>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "ingest/PromiseFolder.h"
#include "model/AtomicFile.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "platform/x11/X11Atoms.h"

#include <xcb/xcb.h>

namespace mosswick {

namespace {

using Clock = std::chrono::steady_clock;

// More than any picture a browser hands over; a runaway source is cut off there.
constexpr qsizetype kMaxDataBytes = qsizetype(1) << 30;

void roundTrip(xcb_connection_t* connection) {
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

QByteArray hostName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0) return {};
    return QByteArray(name);
}

FilePromise::Delivery problem(const char* text) { return {std::nullopt, QString::fromUtf8(text)}; }

enum class Writers { none, some, unknown };

// Whether any process holds the file open for writing: the kernel grants a read lease exactly when
// none does. The lease is let go at once; a writer opening the file meanwhile waits that long.
Writers writersOf(const std::filesystem::path& file) {
    const int fd = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return Writers::unknown;
    // Breaking a lease signals its holder, by default with SIGIO, which would end Mosswick; SIGURG
    // is ignored unless handled.
    ::fcntl(fd, F_SETSIG, SIGURG);
    Writers writers = Writers::unknown;
    if (::fcntl(fd, F_SETLEASE, F_RDLCK) == 0) {
        writers = Writers::none;
        ::fcntl(fd, F_SETLEASE, F_UNLCK);
    } else if (errno == EAGAIN) {
        writers = Writers::some;
    }
    ::close(fd);
    return writers;
}

bool isRegularFile(const std::filesystem::path& file) {
    struct stat info {};
    return ::stat(file.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

struct X11DirectSaveWorker::Pending {
    enum class Answer { none, saved, failed, error, refused };
    enum class Data { notAsked, waiting, incremental, done };

    Exchange exchange;
    Answer answer = Answer::none;
    Data data = Data::notAsked;
    QByteArray bytes;
    Clock::time_point deadline;
    bool sourceGone = false;
    // After "S": the inotify watch of the folder, and how long to wait after its last change.
    int watch = -1;
    std::chrono::milliseconds patience{0};
};

std::shared_ptr<X11DirectSaveWorker> X11DirectSaveWorker::start(const QByteArray& displayName,
                                                                std::chrono::milliseconds answerTimeout) {
    xcb_connection_t* connection =
        xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), nullptr);
    if (!connection || xcb_connection_has_error(connection)) {
        if (connection) xcb_disconnect(connection);
        qCInfo(lcIngest) << "No X connection for receiving promised files:" << displayName;
        return nullptr;
    }
    std::shared_ptr<X11DirectSaveWorker> worker(new X11DirectSaveWorker(connection, answerTimeout));
    if (worker->wakeRead_ < 0) return nullptr;
    worker->thread_ = std::thread([raw = worker.get()] { raw->run(); });
    return worker;
}

X11DirectSaveWorker::X11DirectSaveWorker(xcb_connection_t* connection,
                                         std::chrono::milliseconds answerTimeout)
    : connection_(connection), answerTimeout_(answerTimeout), host_(hostName()) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    X11Atoms atoms(connection_);
    atoms.intern({"XdndSelection", "XdndDirectSave0", "text/plain", "application/octet-stream", "INCR",
                  "MOSSWICK_DIRECT_SAVE_ANSWER", "MOSSWICK_DIRECT_SAVE_DATA"});
    selection_ = atoms["XdndSelection"];
    directSave_ = atoms["XdndDirectSave0"];
    textPlain_ = atoms["text/plain"];
    octetStream_ = atoms["application/octet-stream"];
    incremental_ = atoms["INCR"];
    answerProperty_ = atoms["MOSSWICK_DIRECT_SAVE_ANSWER"];
    dataProperty_ = atoms["MOSSWICK_DIRECT_SAVE_DATA"];
    int fds[2];
    if (::pipe2(fds, O_NONBLOCK | O_CLOEXEC) == 0) {
        wakeRead_ = fds[0];
        wakeWrite_ = fds[1];
    }
    fileEvents_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fileEvents_ < 0)
        qCInfo(lcIngest) << "No inotify: a promised file is taken as soon as its source answers";
}

X11DirectSaveWorker::~X11DirectSaveWorker() {
    stop();
    if (wakeRead_ >= 0) ::close(wakeRead_);
    if (wakeWrite_ >= 0) ::close(wakeWrite_);
    if (fileEvents_ >= 0) ::close(fileEvents_);
    xcb_disconnect(connection_);
}

void X11DirectSaveWorker::stop() {
    stopping_ = true;
    wake();
    if (thread_.joinable()) thread_.join();
}

void X11DirectSaveWorker::wake() {
    if (wakeWrite_ < 0) return;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakeWrite_, &byte, 1);
}

QByteArray X11DirectSaveWorker::proposedName(quint32 source) {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, source, directSave_, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096), nullptr);
    wake();  // the wait above may have read events the worker has to see
    if (!reply) return {};
    QByteArray name;
    if (reply->format == 8)
        name = QByteArray(static_cast<const char*>(xcb_get_property_value(reply)),
                          xcb_get_property_value_length(reply));
    std::free(reply);
    return name;
}

void X11DirectSaveWorker::begin(Exchange exchange) {
    if (stopping_) {
        exchange.done(problem("Mosswick is quitting"));
        return;
    }
    const quint32 source = exchange.source;
    const quint32 time = exchange.time;
    const bool wantsData = exchange.wantsData;
    const QByteArray local =
        LocalPath::toUrl(exchange.destination.folder / exchange.destination.fileName).toEncoded();
    // file://host/path, as the protocol asks.
    const QByteArray uri = "file://" + host_ + local.mid(static_cast<qsizetype>(std::strlen("file://")));

    const quint32 window = xcb_generate_id(connection_);
    auto pending = std::make_unique<Pending>();
    pending->exchange = std::move(exchange);
    pending->data = wantsData ? Pending::Data::waiting : Pending::Data::notAsked;
    pending->deadline = Clock::now() + answerTimeout_;
    {
        // In place before the requests go out: the answer may come at once.
        const std::lock_guard lock(mutex_);
        pending_[window] = std::move(pending);
    }

    const uint32_t ownEvents = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &ownEvents);
    // To learn of a source that goes away without answering.
    const uint32_t sourceEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, source, XCB_CW_EVENT_MASK, &sourceEvents);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, source, directSave_, textPlain_, 8,
                        static_cast<uint32_t>(uri.size()), uri.constData());
    xcb_convert_selection(connection_, window, selection_, directSave_, answerProperty_, time);
    if (wantsData) xcb_convert_selection(connection_, window, selection_, octetStream_, dataProperty_, time);
    roundTrip(connection_);
    wake();
    qCDebug(lcIngest) << "Asked drag source" << Qt::hex << source << "for" << uri << "at time" << Qt::dec
                      << time;
}

void X11DirectSaveWorker::run() {
    const int connectionFd = xcb_get_file_descriptor(connection_);
    while (!stopping_) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            handle(event);
            std::free(event);
        }
        if (xcb_connection_has_error(connection_)) {
            qCWarning(lcIngest) << "Lost the X connection that receives promised files";
            std::map<quint32, std::unique_ptr<Pending>> orphans;
            {
                const std::lock_guard lock(mutex_);
                orphans.swap(pending_);
            }
            for (auto& [window, pending] : orphans) pending->exchange.done(problem("lost the X server"));
            return;
        }
        settleDue();
        pollfd fds[3] = {{connectionFd, POLLIN, 0}, {wakeRead_, POLLIN, 0}, {fileEvents_, POLLIN, 0}};
        ::poll(fds, fileEvents_ >= 0 ? 3 : 2, msUntilNextDeadline());
        if (fds[1].revents & POLLIN) {
            char drain[64];
            while (::read(wakeRead_, drain, sizeof drain) > 0) {
            }
        }
        if (fileEvents_ >= 0 && (fds[2].revents & POLLIN)) readFileEvents();
    }
}

QByteArray X11DirectSaveWorker::takeProperty(quint32 window, quint32 property, quint32* type) {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 1, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, UINT32_MAX / 4),
        nullptr);
    if (type) *type = reply ? reply->type : quint32(XCB_ATOM_NONE);
    if (!reply) return {};
    // The length is in bytes already, whatever the format.
    QByteArray value(static_cast<const char*>(xcb_get_property_value(reply)),
                     xcb_get_property_value_length(reply));
    std::free(reply);
    return value;
}

void X11DirectSaveWorker::handle(const void* generic) {
    const auto* event = static_cast<const xcb_generic_event_t*>(generic);
    const uint8_t kind = event->response_type & 0x7F;
    if (kind == 0) {
        const auto* error = reinterpret_cast<const xcb_generic_error_t*>(event);
        qCDebug(lcIngest) << "X error" << error->error_code << "for request" << error->major_code;
        return;
    }
    std::vector<std::pair<std::unique_ptr<Pending>, FilePromise::Delivery>> finished;
    {
        const std::lock_guard lock(mutex_);
        const auto settleOne = [&](quint32 window) {
            auto found = pending_.find(window);
            if (found == pending_.end()) return;
            if (auto delivery = settle(*found->second, false)) {
                unwatch(*found->second);
                finished.emplace_back(std::move(found->second), *delivery);
                pending_.erase(found);
                xcb_destroy_window(connection_, window);
            }
        };
        if (kind == XCB_SELECTION_NOTIFY) {
            const auto* notify = reinterpret_cast<const xcb_selection_notify_event_t*>(event);
            auto found = pending_.find(notify->requestor);
            if (found == pending_.end()) return;
            Pending& pending = *found->second;
            if (notify->target == directSave_) {
                if (notify->property == XCB_ATOM_NONE) {
                    pending.answer = Pending::Answer::refused;
                } else {
                    const QByteArray answer = takeProperty(notify->requestor, notify->property, nullptr);
                    const char letter = answer.isEmpty() ? '\0' : answer.at(0);
                    pending.answer = letter == 'S'   ? Pending::Answer::saved
                                     : letter == 'F' ? Pending::Answer::failed
                                                     : Pending::Answer::error;
                }
            } else if (notify->target == octetStream_ && pending.data == Pending::Data::waiting) {
                quint32 type = XCB_ATOM_NONE;
                pending.bytes = notify->property == XCB_ATOM_NONE
                                    ? QByteArray()
                                    : takeProperty(notify->requestor, notify->property, &type);
                // Large data comes in pieces, each fetched when the last was taken.
                pending.data = type == incremental_ ? Pending::Data::incremental : Pending::Data::done;
                if (pending.data == Pending::Data::incremental) pending.bytes.clear();
            }
            settleOne(notify->requestor);
        } else if (kind == XCB_PROPERTY_NOTIFY) {
            const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event);
            auto found = pending_.find(notify->window);
            if (found == pending_.end() || notify->atom != dataProperty_ ||
                notify->state != XCB_PROPERTY_NEW_VALUE || found->second->data != Pending::Data::incremental)
                return;
            Pending& pending = *found->second;
            const QByteArray piece = takeProperty(notify->window, dataProperty_, nullptr);
            if (piece.isEmpty()) {
                pending.data = Pending::Data::done;
            } else if (pending.bytes.size() + piece.size() > kMaxDataBytes) {
                pending.data = Pending::Data::done;
                pending.bytes.clear();
                qCWarning(lcIngest) << "A drag source sent more than" << kMaxDataBytes << "bytes; not kept";
            } else {
                pending.bytes += piece;
                pending.deadline = Clock::now() + answerTimeout_;  // still coming
            }
            settleOne(notify->window);
        } else if (kind == XCB_DESTROY_NOTIFY) {
            const auto* notify = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
            std::vector<quint32> affected;
            for (auto& [window, pending] : pending_) {
                if (pending->exchange.source != notify->window) continue;
                pending->sourceGone = true;
                affected.push_back(window);
            }
            for (const quint32 window : affected) settleOne(window);
        }
        if (!finished.empty()) xcb_flush(connection_);
    }
    finish(finished);
}

void X11DirectSaveWorker::finish(
    std::vector<std::pair<std::unique_ptr<Pending>, FilePromise::Delivery>>& finished) {
    for (auto& [pending, delivery] : finished) pending->exchange.done(delivery);
    finished.clear();
}

void X11DirectSaveWorker::unwatch(Pending& pending) {
    if (pending.watch < 0) return;
    ::inotify_rm_watch(fileEvents_, pending.watch);
    pending.watch = -1;
}

void X11DirectSaveWorker::readFileEvents() {
    std::set<int> changed;
    std::set<int> closed;  // a writer closed a file, or one appeared whole
    alignas(inotify_event) char buffer[4096];
    ssize_t length = 0;
    while ((length = ::read(fileEvents_, buffer, sizeof buffer)) > 0) {
        for (const char* at = buffer; at < buffer + length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            changed.insert(event->wd);
            if (event->mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) closed.insert(event->wd);
            at += sizeof(inotify_event) + event->len;
        }
    }
    std::vector<std::pair<std::unique_ptr<Pending>, FilePromise::Delivery>> finished;
    {
        const std::lock_guard lock(mutex_);
        const auto now = Clock::now();
        for (auto it = pending_.begin(); it != pending_.end();) {
            Pending& pending = *it->second;
            std::optional<FilePromise::Delivery> delivery;
            if (pending.watch >= 0 && changed.count(pending.watch)) {
                pending.deadline = now + pending.patience;
                // Each write is only noted; whether the file is complete is asked when one closes.
                if (closed.count(pending.watch)) delivery = settle(pending, false);
            }
            if (!delivery) {
                ++it;
                continue;
            }
            unwatch(pending);
            xcb_destroy_window(connection_, it->first);
            finished.emplace_back(std::move(it->second), *delivery);
            it = pending_.erase(it);
        }
        if (!finished.empty()) xcb_flush(connection_);
    }
    finish(finished);
}

std::optional<FilePromise::Delivery> X11DirectSaveWorker::settle(Pending& pending, bool dueNow) {
    const FilePromise::Destination& destination = pending.exchange.destination;
    switch (pending.answer) {
        case Pending::Answer::saved: {
            if (pending.watch < 0 && fileEvents_ >= 0 && !dueNow) {
                // Before anything is looked at, so that no close goes unseen.
                pending.watch = ::inotify_add_watch(
                    fileEvents_, destination.folder.c_str(),
                    IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_ONLYDIR);
            }
            const auto file = PromiseFolder::arrivedFile(destination.folder, destination.fileName);
            if (!file) {
                if (!dueNow && pending.watch >= 0) {
                    // Some sources only make the file once they have begun to fetch it.
                    pending.patience = answerTimeout_;
                    pending.deadline = Clock::now() + pending.patience;
                    return std::nullopt;
                }
                return problem("the drag source said it saved the file, but none arrived");
            }
            // A folder (an archive's directory) is written before the answer.
            const Writers writers = isRegularFile(*file) ? writersOf(*file) : Writers::none;
            if (writers == Writers::none || pending.watch < 0) return FilePromise::Delivery{file, {}};
            if (dueNow) {
                if (writers == Writers::some)
                    qCWarning(lcIngest) << "A promised file is still open for writing after"
                                        << answerTimeout_.count() << "ms without a change; taken as it is";
                return FilePromise::Delivery{file, {}};
            }
            // Still being written; or, where no lease tells, taken once it has stopped changing.
            pending.patience = writers == Writers::some ? answerTimeout_ : kSettleTime;
            pending.deadline = Clock::now() + pending.patience;
            return std::nullopt;
        }
        case Pending::Answer::failed:
            if (pending.data == Pending::Data::waiting || pending.data == Pending::Data::incremental) {
                if (!dueNow && !pending.sourceGone) return std::nullopt;
                return problem("the drag source did not send the file's data");
            }
            if (pending.data == Pending::Data::done && !pending.bytes.isEmpty()) {
                // "F" with the data on offer: the receiver writes the file itself.
                const std::filesystem::path file = destination.folder / destination.fileName;
                if (const std::string error = AtomicFile::write(file, pending.bytes, 0644); !error.empty()) {
                    qCWarning(lcIngest) << "Could not write a dropped file:" << error.c_str();
                    return FilePromise::Delivery{std::nullopt, QString::fromStdString(error)};
                }
                return FilePromise::Delivery{file, {}};
            }
            return problem("the drag source could not save the file");
        case Pending::Answer::error:
            return problem("the drag source reported an error");
        case Pending::Answer::refused:
            return problem("the drag source refused to save the file");
        case Pending::Answer::none:
            break;
    }
    if (!dueNow && !pending.sourceGone) return std::nullopt;
    // No answer: whatever did arrive in the folder is taken rather than lost.
    if (auto file = PromiseFolder::arrivedFile(destination.folder, destination.fileName))
        return FilePromise::Delivery{file, {}};
    return problem(pending.sourceGone ? "the drag source went away without answering"
                                      : "the drag source did not answer");
}

void X11DirectSaveWorker::settleDue() {
    std::vector<std::pair<std::unique_ptr<Pending>, FilePromise::Delivery>> finished;
    {
        const std::lock_guard lock(mutex_);
        const auto now = Clock::now();
        for (auto it = pending_.begin(); it != pending_.end();) {
            std::optional<FilePromise::Delivery> delivery;
            if (now >= it->second->deadline) delivery = settle(*it->second, true);
            if (!delivery) {
                ++it;
                continue;
            }
            unwatch(*it->second);
            xcb_destroy_window(connection_, it->first);
            finished.emplace_back(std::move(it->second), *delivery);
            it = pending_.erase(it);
        }
        if (!finished.empty()) xcb_flush(connection_);
    }
    for (auto& [pending, delivery] : finished) pending->exchange.done(delivery);
}

int X11DirectSaveWorker::msUntilNextDeadline() {
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) return -1;
    auto next = Clock::time_point::max();
    for (const auto& [window, pending] : pending_) next = std::min(next, pending->deadline);
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left + 1, 0, 60'000));
}

}  // namespace mosswick
