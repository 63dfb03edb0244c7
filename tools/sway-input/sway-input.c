/* The pointer and keyboard of the sway desktop tests, through wlroots'
 * zwlr_virtual_pointer_manager_v1 and zwp_virtual_keyboard_manager_v1. A headless sway has no
 * input device at all: these also give its seat the pointer and keyboard capabilities, without
 * which no client gets pointer events (and no drag can start) or keys. sway's own cursor commands
 * move the cursor but start no client's drag.
 *
 * Reads commands from standard input, one a line:
 *   abs X Y     move to (X, Y) in layout pixels of a WIDTH x HEIGHT layout (arguments, default
 *               1280 800)
 *   rel DX DY   move by (DX, DY): what a drag follows
 *   down | up   press or release the left button
 *   button CODE S
 *               press (S = 1) or release (S = 0) the button of evdev code CODE (right: 0x111)
 *   key CODE S  press (S = 1) or release (S = 0) the key of evdev code CODE (F5: 63), on a US
 *               keyboard
 * and answers each, once the compositor has handled it, with "done <CLOCK_MONOTONIC seconds at
 * which it was sent>" on standard output; "ready" first. Exits 1 without the protocol. */
#define _GNU_SOURCE /* memfd_create */
#include <linux/input-event-codes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include "virtual-keyboard-client.h"
#include "virtual-pointer-client.h"

static struct wl_seat* seat;
static struct zwlr_virtual_pointer_manager_v1* manager;
static struct zwp_virtual_keyboard_manager_v1* keyboards;

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

static void global(void* data, struct wl_registry* registry, uint32_t name, const char* interface,
                   uint32_t version) {
    (void)data;
    (void)version;
    if (strcmp(interface, "wl_seat") == 0 && !seat)
        seat = wl_registry_bind(registry, name, &wl_seat_interface, 1);
    if (strcmp(interface, "zwlr_virtual_pointer_manager_v1") == 0)
        manager = wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1);
    if (strcmp(interface, "zwp_virtual_keyboard_manager_v1") == 0)
        keyboards = wl_registry_bind(registry, name, &zwp_virtual_keyboard_manager_v1_interface, 1);
}

static void global_remove(void* data, struct wl_registry* registry, uint32_t name) {
    (void)data;
    (void)registry;
    (void)name;
}

static const struct wl_registry_listener registry_listener = {global, global_remove};

/* A keyboard with xkbcommon's default (US) keymap, handed over in a memory file; NULL where the
 * compositor or xkbcommon has none. */
static struct zwp_virtual_keyboard_v1* make_keyboard(void) {
    if (!keyboards) return NULL;
    struct xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    struct xkb_keymap* keymap =
        context ? xkb_keymap_new_from_names(context, NULL, XKB_KEYMAP_COMPILE_NO_FLAGS) : NULL;
    char* text = keymap ? xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1) : NULL;
    struct zwp_virtual_keyboard_v1* keyboard = NULL;
    const int fd = text ? memfd_create("keymap", MFD_CLOEXEC) : -1;
    const size_t size = text ? strlen(text) + 1 : 0;
    if (fd >= 0 && write(fd, text, size) == (ssize_t)size) {
        keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, seat);
        zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, (uint32_t)size);
    }
    if (fd >= 0) close(fd);
    free(text);
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
    return keyboard;
}

int main(int argc, char** argv) {
    const unsigned width = argc > 2 ? (unsigned)atoi(argv[1]) : 1280;
    const unsigned height = argc > 2 ? (unsigned)atoi(argv[2]) : 800;
    setvbuf(stdout, NULL, _IOLBF, 0);
    struct wl_display* display = wl_display_connect(NULL);
    if (!display) {
        fprintf(stderr, "sway-input: no Wayland display\n");
        return 1;
    }
    struct wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registry_listener, NULL);
    wl_display_roundtrip(display);
    if (!manager) {
        fprintf(stderr, "sway-input: the compositor offers no zwlr_virtual_pointer_manager_v1\n");
        return 1;
    }
    struct zwlr_virtual_pointer_v1* pointer =
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, seat);
    struct zwp_virtual_keyboard_v1* keyboard = make_keyboard();
    wl_display_roundtrip(display);
    printf("ready\n");

    char line[256];
    while (fgets(line, sizeof line, stdin)) {
        int x = 0;
        int y = 0;
        const double sent = now();
        const uint32_t ms = (uint32_t)(sent * 1000);
        if (sscanf(line, "abs %d %d", &x, &y) == 2)
            zwlr_virtual_pointer_v1_motion_absolute(pointer, ms, (uint32_t)x, (uint32_t)y, width, height);
        else if (sscanf(line, "rel %d %d", &x, &y) == 2)
            zwlr_virtual_pointer_v1_motion(pointer, ms, wl_fixed_from_int(x), wl_fixed_from_int(y));
        else if (sscanf(line, "button %i %d", &x, &y) == 2)
            zwlr_virtual_pointer_v1_button(pointer, ms, (uint32_t)x, (uint32_t)y);
        else if (sscanf(line, "key %d %d", &x, &y) == 2 && keyboard)
            zwp_virtual_keyboard_v1_key(keyboard, ms, (uint32_t)x, (uint32_t)y);
        else if (strncmp(line, "down", 4) == 0)
            zwlr_virtual_pointer_v1_button(pointer, ms, BTN_LEFT, 1);
        else if (strncmp(line, "up", 2) == 0)
            zwlr_virtual_pointer_v1_button(pointer, ms, BTN_LEFT, 0);
        else {
            printf("unknown %s", line);
            continue;
        }
        if (strncmp(line, "key", 3) != 0) zwlr_virtual_pointer_v1_frame(pointer);
        if (wl_display_roundtrip(display) < 0) {
            fprintf(stderr, "sway-input: lost the compositor\n");
            return 1;
        }
        printf("done %.6f\n", sent);
    }
    wl_display_disconnect(display);
    return 0;
}
