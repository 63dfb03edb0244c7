#include "platform/x11/X11Atoms.h"

#include <cstdlib>
#include <memory>
#include <vector>

#include <X11/Xlib-xcb.h>
#include <xcb/xcb.h>

namespace mosswick {

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

}  // namespace

X11Atoms::X11Atoms(xcb_connection_t* connection) : connection_(connection) {}

X11Atoms::X11Atoms(_XDisplay* display) : connection_(XGetXCBConnection(display)) {}

quint32 X11Atoms::atom(const QByteArray& name) {
    if (auto found = byName_.constFind(name); found != byName_.constEnd()) return *found;
    intern({name.constData()});
    return byName_.value(name, XCB_ATOM_NONE);
}

void X11Atoms::intern(std::initializer_list<const char*> names) {
    std::vector<std::pair<QByteArray, xcb_intern_atom_cookie_t>> asked;
    for (const char* text : names) {
        const QByteArray name(text);
        if (byName_.contains(name)) continue;
        asked.emplace_back(
            name, xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.constData()));
    }
    for (const auto& [name, cookie] : asked) {
        Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        // A failure is not remembered: the next caller asks again.
        if (!reply || reply->atom == XCB_ATOM_NONE) continue;
        byName_.insert(name, reply->atom);
        byAtom_.insert(reply->atom, name);
    }
}

QList<QByteArray> X11Atoms::names(const QList<quint32>& atoms) {
    std::vector<std::pair<quint32, xcb_get_atom_name_cookie_t>> asked;
    for (const quint32 atom : atoms) {
        if (atom == XCB_ATOM_NONE || byAtom_.contains(atom)) continue;
        asked.emplace_back(atom, xcb_get_atom_name(connection_, atom));
    }
    for (const auto& [atom, cookie] : asked) {
        Reply<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(connection_, cookie, nullptr));
        if (!reply) continue;
        const QByteArray name(xcb_get_atom_name_name(reply.get()),
                              xcb_get_atom_name_name_length(reply.get()));
        byAtom_.insert(atom, name);
        byName_.insert(name, atom);
    }
    QList<QByteArray> result;
    result.reserve(atoms.size());
    for (const quint32 atom : atoms) result.push_back(byAtom_.value(atom));
    return result;
}

}  // namespace mosswick
