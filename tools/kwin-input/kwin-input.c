/* The pointer of the KWin desktop tests, through KWin's org_kde_kwin_fake_input. KWin offers it
 * only to trusted clients: the tests run KWin with KWIN_WAYLAND_NO_PERMISSION_CHECKS=1.
 *
 * Reads commands from standard input, one a line:
 *   abs X Y     move to (X, Y) in the compositor's logical pixels
 *   rel DX DY   move by (DX, DY): what a drag follows
 *   down | up   press or release the left button
 *   button CODE S, key CODE S
 *               press (S = 1) or release (S = 0) the button or key of evdev code CODE
 * and answers each, once the compositor has handled it, with "done <CLOCK_MONOTONIC seconds at
 * which it was sent>" on standard output; "ready" first. Exits 1 without the protocol. */
#include <linux/input-event-codes.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <wayland-client.h>

#include "fake-input-client.h"

static struct org_kde_kwin_fake_input* fake_input;

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

static void global(void* data, struct wl_registry* registry, uint32_t name, const char* interface,
                   uint32_t version) {
    (void)data;
    if (strcmp(interface, "org_kde_kwin_fake_input") == 0)
        fake_input = wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, version < 4 ? version : 4);
}

static void global_remove(void* data, struct wl_registry* registry, uint32_t name) {
    (void)data;
    (void)registry;
    (void)name;
}

static const struct wl_registry_listener registry_listener = {global, global_remove};

int main(void) {
    setvbuf(stdout, NULL, _IOLBF, 0);
    struct wl_display* display = wl_display_connect(NULL);
    if (!display) {
        fprintf(stderr, "kwin-input: no Wayland display\n");
        return 1;
    }
    struct wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registry_listener, NULL);
    wl_display_roundtrip(display);
    if (!fake_input) {
        fprintf(stderr, "kwin-input: the compositor offers no org_kde_kwin_fake_input\n");
        return 1;
    }
    org_kde_kwin_fake_input_authenticate(fake_input, "mosswick-kwin-input", "desktop tests");
    wl_display_roundtrip(display);
    printf("ready\n");

    char line[256];
    while (fgets(line, sizeof line, stdin)) {
        double x = 0;
        double y = 0;
        const double sent = now();
        if (sscanf(line, "abs %lf %lf", &x, &y) == 2)
            org_kde_kwin_fake_input_pointer_motion_absolute(fake_input, wl_fixed_from_double(x), wl_fixed_from_double(y));
        else if (sscanf(line, "rel %lf %lf", &x, &y) == 2)
            org_kde_kwin_fake_input_pointer_motion(fake_input, wl_fixed_from_double(x), wl_fixed_from_double(y));
        else if (sscanf(line, "button %lf %lf", &x, &y) == 2)
            org_kde_kwin_fake_input_button(fake_input, (uint32_t)x, (uint32_t)y);
        else if (sscanf(line, "key %lf %lf", &x, &y) == 2)
            org_kde_kwin_fake_input_keyboard_key(fake_input, (uint32_t)x, (uint32_t)y);
        else if (strncmp(line, "down", 4) == 0)
            org_kde_kwin_fake_input_button(fake_input, BTN_LEFT, 1);
        else if (strncmp(line, "up", 2) == 0)
            org_kde_kwin_fake_input_button(fake_input, BTN_LEFT, 0);
        else {
            printf("unknown %s", line);
            continue;
        }
        if (wl_display_roundtrip(display) < 0) {
            fprintf(stderr, "kwin-input: lost the compositor\n");
            return 1;
        }
        printf("done %.6f\n", sent);
    }
    wl_display_disconnect(display);
    return 0;
}
