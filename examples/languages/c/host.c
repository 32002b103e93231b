/* Walks a path, asks 12,000 questions and prints the digest of the answers: host MESH */
#include "../questions.h"
#include <stdio.h>
#include <stdlib.h>
#include <zuno.h>
/* clang-format off */
static zuno_status check(zuno_status status) {
    zuno_error error = {.size = sizeof error};
    if (status >= 0) return status;
    zuno_last_error(&error);
    exit((fprintf(stderr, "%s\n", error.text), 2));
}
int main(int argc, char **argv) {
    zuno_session *session; zuno_search *search; zuno_point2 low, high;
    check(zuno_start(NULL, argc > 1 ? argv[1] : "", &session));
    check(zuno_bounds(session, &low, &high));
    for (int i = 0, steps = 0; i < 3000; ++i) {
        struct { zuno_point ends[2]; int32_t blocked; float hit; } a;
        for (zuno_point *end = a.ends; end < a.ends + 2; ++end) {
            end->x = between(low.x, high.x);
            end->z = between(low.y, high.y);
            if (check(zuno_ground_height(session, end->x, end->z, &end->y)) == ZUNO_NONE) end->y = 0;
        }
        check(zuno_is_blocked(session, a.ends[1].x, a.ends[1].z, &a.blocked));
        check(zuno_trace_ray(session, a.ends[0].x, a.ends[0].z, a.ends[1].x, a.ends[1].z, &a.hit));
        add(&a, 8);
        if (check(zuno_search_open(session, a.ends, a.ends + 1, &search)) == ZUNO_NONE) continue;
        struct { int32_t state; float cost; } path;
        const int before = steps;
        do check(zuno_search_run(search, 64, &path.state)); while (path.state == ZUNO_RUNNING);
        for (uint32_t n = 1; check(zuno_search_waypoints(search, a.ends, &n)), n == 1; ++steps)
            add(a.ends, 3);
        check(zuno_search_cost(search, &path.cost));
        check(zuno_destroy(search));
        add(&path, 2);
        if (before == 0 && steps > 0) printf("walked %d steps, cost %.3f\n", steps, path.cost);
    }
    printf("digest %016llx\n", (unsigned long long)digest);
    return check(zuno_close(session, NULL));
}
