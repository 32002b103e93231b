/* zuno.h: the navigation runtime for programs in every language, in C99.
 *
 * Handles are opaque and checked: one that is null, destroyed, or of another kind gives
 *   ZUNO_BAD_HANDLE. What belongs to a session or a mesh is said where it is made.
 * Statuses: every function returns one. 0 and 1 are answers, all below 0 are failures: then nothing
 *   was changed or written, unless the comment says so, and `zuno_last_error` tells more. Any
 *   function may fail with ZUNO_BAD_HANDLE, ZUNO_BAD_ARGUMENT (a null pointer where none is
 *   allowed, an index outside its range) and ZUNO_NO_MEMORY; "Errors" lists what else.
 * Structs that begin with `size` have it set to their sizeof by the caller, whether they are given
 *   or filled in. Pointers in them, and all arguments, are used within the call alone.
 * Arrays come with a count. Where the library fills one in, `*count` is the room before and the
 *   number after the call. Without an array (null) it is only set to the number; with too little
 *   room too, and the status is ZUNO_TOO_SMALL.
 * Texts are UTF-8 and end with a zero; those that the library fills in count it.
 * Units: those of the mesh; a point in the plane is a point in space without its up component
 *   (with y up: x and z). Non-finite coordinates are allowed: they lie nowhere.
 * Thread "world": one at a time, and never within a callback (ZUNO_BUSY): usually the one thread
 *   that also started the session. Thread "any": any number at once. Thread "own": each object is
 *   one thread's at a time.
 * Calling convention: C's own (on 32-bit Windows __cdecl). No exception crosses this border;
 *   callbacks must return, neither throw nor jump. */
/* clang-format off */
#ifndef ZUNO_H
#define ZUNO_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ZUNO_API
#define ZUNO_API
#endif
/* ---- Statuses, failures, versions, messages ---- */
typedef int32_t zuno_status;
enum {
    ZUNO_OK = 0,
    ZUNO_NONE = 1,           /* no failure: what was asked for isn't there */
    ZUNO_BAD_ARGUMENT = -1,
    ZUNO_BAD_HANDLE = -2,
    ZUNO_BAD_SIZE = -3,      /* of a struct: header and library don't fit, or it was not set */
    ZUNO_TOO_SMALL = -4,     /* an array; its count says how much is needed */
    ZUNO_BUSY = -5,          /* a second session; a call within a callback */
    ZUNO_NO_MEMORY = -6,     /* the call may be made again */
    ZUNO_BAD_FILE = -7,      /* missing, or can't be opened, read or made */
    ZUNO_BAD_MESH = -8,      /* the file holds no mesh that a world can run on */
    ZUNO_BAD_RECORDING = -9, /* no recording, or its mesh isn't there */
    ZUNO_BAD_VERSION = -10,
    ZUNO_FAILED = -11        /* anything else; the text says what */
};

typedef struct zuno_session zuno_session;     /* a running world; one in a process */
typedef struct zuno_search zuno_search;       /* of a session */
typedef struct zuno_scheduler zuno_scheduler; /* of a session */
typedef struct zuno_mesh zuno_mesh;           /* the host's own view of a mesh; never changes */
typedef struct zuno_path zuno_path;           /* a path from corner to corner on a mesh */
typedef struct zuno_corridor zuno_corridor;   /* a character that walks on a mesh */

typedef struct zuno_point { float x, y, z; } zuno_point;
typedef struct zuno_point2 { float x, y; } zuno_point2; /* in the plane */

#define ZUNO_HEADER_VERSION 10000u /* 10000 * major + 100 * minor + patch */

/* Compares the header that a host was built with, ZUNO_HEADER_VERSION, with the library, whose own
 * version it gives when `library` isn't null, also on failure. Errors: BAD_VERSION for another major
 * version, or a newer minor one. Cost: nothing. Thread: any. */
ZUNO_API zuno_status zuno_check_version(uint32_t header, uint32_t *library);

typedef struct zuno_parameter { const char *name, *value; } zuno_parameter;
typedef struct zuno_error {
    uint32_t size;
    zuno_status status;
    const char *text;                 /* "zuno_start: File or path not found" */
    const char *type;                 /* the exception's class, "FileNotFoundException"; or "" */
    const zuno_parameter *parameters; /* such as the file's name */
    uint32_t parameter_count;
} zuno_error;

/* Gives this thread's last failure; NONE, with empty texts, while there was none. The texts are the
 * library's, until this thread's next failure; long ones are cut. Cost: nothing. Thread: any. */
ZUNO_API zuno_status zuno_last_error(zuno_error *error);

enum { ZUNO_LOG_DEBUG, ZUNO_LOG_MESSAGE, ZUNO_LOG_WARNING, ZUNO_LOG_ERROR, ZUNO_LOG_REPORT };
typedef void (*zuno_log)(void *user, int32_t level, const char *text, const char *file,
                         uint32_t line);

/* Sends reports of broken rules, and log lines, to a callback, from now on and for all sessions;
 * null: to standard error, and standard output. `user` must live as long. The callback's texts are
 * valid during it. Cost: nothing. Thread: world. */
ZUNO_API zuno_status zuno_set_log(zuno_log log, void *user);

/* ---- Sessions: a world that runs ---- */
typedef struct zuno_memory_functions { /* used by the session's thread alone */
    void *user;
    void *(*allocate)(void *user, uint32_t size); /* aligned for any type; null: there is none */
    void (*free)(void *user, void *block);
} zuno_memory_functions;

typedef struct zuno_file_functions { /* read-only, without handles; names as the host gave them */
    void *user;
    int64_t (*length)(void *user, const char *name); /* bytes; -1: no such file, -2: no access */
    int32_t (*read)(void *user, const char *name, uint64_t offset, void *bytes, uint32_t count);
} zuno_file_functions; /* `read` gives the bytes read; fewer than asked is a failure */

typedef struct zuno_settings {
    uint32_t size;
    const char *base_folder;             /* the C library's files can't leave it; null: no limit */
    const char *recording;               /* file that every call is recorded in; null: none */
    const zuno_memory_functions *memory; /* null: malloc */
    const zuno_file_functions *files;    /* null: the C library's */
} zuno_settings;

typedef struct zuno_memory { /* of the memory functions so far */
    uint32_t size;
    int32_t is_recording; /* 0 without a recording, or since its device is full */
    uint64_t allocations, frees, blocks, bytes, peak_bytes;
} zuno_memory;

/* Starts the library and loads a mesh of either form. `settings` may be null. The session is the
 * host's to close. The functions in the settings must live until then. Errors: BUSY while another
 * session runs, BAD_FILE, BAD_MESH, BAD_SIZE. Cost: that of reading the mesh. Thread: world. */
ZUNO_API zuno_status zuno_start(const zuno_settings *settings, const char *mesh,
                                zuno_session **session);

/* Closes a session, and all its searches and schedulers. Meshes, paths and corridors live on. `left`
 * may be null; else it gets the memory figures after that: nothing is left. Errors: BAD_SIZE.
 * Cost: linear in what was open. Thread: world. */
ZUNO_API zuno_status zuno_close(zuno_session *session, zuno_memory *left);

/* Gives the memory figures of a session. Errors: BAD_SIZE. Cost: nothing. Thread: world. */
ZUNO_API zuno_status zuno_memory_figures(zuno_session *session, zuno_memory *figures);

/* Destroys a search, scheduler, mesh, path or corridor. What was made with a mesh keeps it alive.
 * Errors: BAD_HANDLE for a session, which is closed instead. Cost: small. Thread: world for what
 * belongs to a session, else any that no longer uses it. */
ZUNO_API zuno_status zuno_destroy(void *handle);

/* ---- The blocking map ---- */
/* Gives the rectangle that the mesh's corners span in the plane. Cost: nothing. Thread: world. */
ZUNO_API zuno_status zuno_bounds(zuno_session *session, zuno_point2 *low, zuno_point2 *high);

/* Sets `*blocked` to 1 where nothing can stand, also outside the world, else to 0.
 * Cost: some ns. Thread: world. */
ZUNO_API zuno_status zuno_is_blocked(zuno_session *session, float x, float y, int32_t *blocked);

/* Gives the ground's height; NONE, with 3.4028235e38, where there is no ground.
 * Cost: a look into a grid. Thread: world. */
ZUNO_API zuno_status zuno_ground_height(zuno_session *session, float x, float y, float *height);

/* Gives how far a ray runs, in the plane, to something blocked; NONE, with -1, when it reaches its
 * end or starts outside the world. Cost: linear in the cells. Thread: world. */
ZUNO_API zuno_status zuno_trace_ray(zuno_session *session, float from_x, float from_y, float to_x,
                                    float to_y, float *distance);
ZUNO_API zuno_status zuno_trace_ray_in_space(zuno_session *session, const zuno_point *from,
                                             const zuno_point *to, float *distance);

/* ---- Searches ---- */
/* Opens a search, the host's to destroy before the session is closed; NONE, with null, when a point
 * stands on no node. Cost: a walk down a tree. Thread: world. */
ZUNO_API zuno_status zuno_search_open(zuno_session *session, const zuno_point *start,
                                      const zuno_point *goal, zuno_search **search);

enum { ZUNO_FOUND, ZUNO_RUNNING, ZUNO_NO_PATH, ZUNO_OFF_MESH /* of requests alone */ };

/* Advances a search by at most `budget` expansions; `*state` says how it stands. Cost: some 0.1 us
 * an expansion. Thread: world. */
ZUNO_API zuno_status zuno_search_run(zuno_search *search, uint32_t budget, int32_t *state);

/* Gives the next waypoints of a found path, each once: the centres of the nodes that it enters.
 * `*count` is the room before, and the number after the call: less than the room at the path's end
 * and without a path. Points that were written before a failure count. Cost: some ns each.
 * Thread: world. */
ZUNO_API zuno_status zuno_search_waypoints(zuno_search *search, zuno_point *points, uint32_t *count);

/* Gives the cost of a found path once its waypoints were asked for; 0 before. Thread: world. */
ZUNO_API zuno_status zuno_search_cost(zuno_search *search, float *cost);

/* ---- A scheduler: many requests within a budget for each frame ---- */
typedef struct zuno_scheduler_settings {
    uint32_t size;
    uint32_t slice;       /* expansions in one go; a time budget is exceeded by one at most */
    uint32_t turn;        /* expansions that put a request back by one frame */
    uint32_t patience[3]; /* frames that requests of each priority may wait for later ones */
} zuno_scheduler_settings;

enum { ZUNO_URGENT, ZUNO_NORMAL, ZUNO_BACKGROUND };
typedef struct zuno_request {
    uint32_t size;
    int32_t priority;
    zuno_point start, goal;
    uint32_t deadline; /* frames from now, the next one being 1; 0: none. Late answers come, too */
} zuno_request;

typedef struct zuno_answer {
    uint32_t size;
    int32_t result; /* ZUNO_FOUND, ZUNO_NO_PATH or ZUNO_OFF_MESH */
    zuno_point start, goal;
    float cost;
    uint32_t frames_waited; /* 1: the next frame answered */
    uint64_t expansions;
    int32_t is_late;
    uint32_t waypoint_count;
} zuno_answer;

typedef struct zuno_scheduler_figures { /* so far; expansions as they were charged */
    uint32_t size;
    uint32_t open;
    uint64_t frames, added, found, no_path, off_mesh, cancelled, late;
    uint64_t expansions, frame_expansions, frame_nanoseconds, frames_waited, most_frames_waited,
        longest_queue;
} zuno_scheduler_figures;

/* Makes a scheduler, the host's to destroy before the session is closed. `settings` null: slice 32,
 * turn 8192, patience 0, 30, 300. Errors: BAD_SIZE. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_create(zuno_session *session,
                                           const zuno_scheduler_settings *settings,
                                           zuno_scheduler **scheduler);

/* Adds a request and gives its id, which is never 0 and never given again. Errors: BAD_SIZE.
 * Cost: small. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_add(zuno_scheduler *scheduler, const zuno_request *request,
                                        uint64_t *id);

/* Gives a request other points, priority or deadline. An open one keeps its turn, an answered one
 * is opened anew. Errors: BAD_SIZE; BAD_ARGUMENT for an id that names none. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_change(zuno_scheduler *scheduler, uint64_t id,
                                           const zuno_request *request);

/* Ends a request, or drops its answer. Errors: BAD_ARGUMENT for an unknown id. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_cancel(zuno_scheduler *scheduler, uint64_t id);

/* Spends a frame: at most so many expansions and nanoseconds, whichever ends first; UINT64_MAX: no
 * limit. A failure leaves everything as it was: the next frame tries again. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_advance(zuno_scheduler *scheduler, uint64_t expansions,
                                            uint64_t nanoseconds);

/* Takes an answer and its waypoints, and forgets the request; NONE while it is open. Without an
 * array, or with too little room, the answer is filled in and stays. Errors: BAD_SIZE, TOO_SMALL;
 * BAD_ARGUMENT for an id that names none. Cost: linear in the waypoints. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_take(zuno_scheduler *scheduler, uint64_t id, zuno_answer *answer,
                                         zuno_point *waypoints, uint32_t *count);

/* Gives what the scheduler has done so far. Errors: BAD_SIZE. Thread: world. */
ZUNO_API zuno_status zuno_scheduler_look(zuno_scheduler *scheduler, zuno_scheduler_figures *figures);

/* ---- Meshes: the ground, without a world ---- */
#define ZUNO_NO_NODE 0xFFFFFFFFu
typedef struct zuno_place { /* a place on the surface of a node */
    uint32_t node;
    zuno_point position;
} zuno_place;

typedef struct zuno_mesh_figures {
    uint32_t size;
    uint32_t nodes, vertices, islands;
    uint64_t bytes;
} zuno_mesh_figures;

/* Reads a mesh of either form through a session's files, or, for null, the C library's. It is the
 * host's to destroy, and lives on after the session. Errors: BAD_FILE, BAD_MESH. Cost: that of
 * reading it, and some us a node. Thread: world. */
ZUNO_API zuno_status zuno_mesh_load(zuno_session *session, const char *name, zuno_mesh **mesh);

/* Gives the sizes of a mesh. Errors: BAD_SIZE. Thread: any. */
ZUNO_API zuno_status zuno_mesh_look(zuno_mesh *mesh, zuno_mesh_figures *figures);

/* Gives a node's corners in their order. Errors: TOO_SMALL. Thread: any. */
ZUNO_API zuno_status zuno_mesh_outline(zuno_mesh *mesh, uint32_t node, zuno_point *points,
                                       uint32_t *count);

/* Gives the number of a node's island, from 0 for the largest: two points can only have a path
 * between them on the same one. Thread: any. */
ZUNO_API zuno_status zuno_mesh_island(zuno_mesh *mesh, uint32_t node, uint32_t *island);

/* Gives the node from which a search would begin at the point; NONE when it stands on none.
 * Cost: a walk down a tree. Thread: any. */
ZUNO_API zuno_status zuno_mesh_find_node(zuno_mesh *mesh, const zuno_point *at, uint32_t *node);

/* Gives the place straight below or above a point, on the floor nearest in height and at most
 * `height` away; NONE where there is none. Cost: a walk down a tree. Thread: any. */
ZUNO_API zuno_status zuno_mesh_ground(zuno_mesh *mesh, const zuno_point *at, float height,
                                      zuno_place *place);

/* Gives the place nearest to a point, at most `radius` away in the plane and `height` in height,
 * and, when `distance` isn't null, its distance in space; NONE where there is none. A search can
 * begin there. Cost: a walk down a tree. Thread: any. */
ZUNO_API zuno_status zuno_mesh_nearest(zuno_mesh *mesh, const zuno_point *at, float radius,
                                       float height, zuno_place *place, float *distance);

/* The place nearest to the goal that can be reached from the start; NONE when the start stands on no
 * node. Cost: a look at every node that can be reached. Thread: any. */
ZUNO_API zuno_status zuno_mesh_nearest_reachable(zuno_mesh *mesh, const zuno_point *start,
                                                 const zuno_point *goal, zuno_place *place,
                                                 float *distance);

/* Gives the place of a seed, by chance, equal areas being equally likely; the same on every system.
 * NONE when the mesh has no area. Cost: a binary search. Thread: any. */
ZUNO_API zuno_status zuno_mesh_random(zuno_mesh *mesh, uint64_t seed, zuno_place *place);

/* Moves a place towards a target along the surface and its walls, as in a frame's step. `end` may be
 * `from`. Cost: at most 128 nodes. Thread: any. */
ZUNO_API zuno_status zuno_mesh_move(zuno_mesh *mesh, const zuno_place *from, const zuno_point *target,
                                    zuno_place *end);

/* Walks straight from a place towards a target, up to the first wall; `*reached` is 1 when none is
 * in between. Cost: at most 128 nodes; farther is not reached. Thread: any. */
ZUNO_API zuno_status zuno_mesh_walk(zuno_mesh *mesh, const zuno_place *from, const zuno_point *target,
                                    zuno_place *end, int32_t *reached);

/* Gives the distance in the plane to the nearest wall, or `limit` when that is less.
 * Cost: linear in the nodes within the limit. Thread: any. */
ZUNO_API zuno_status zuno_mesh_wall_distance(zuno_mesh *mesh, const zuno_place *from, float limit,
                                             float *distance);

enum { ZUNO_POSSIBLE, ZUNO_POINT_OFF_MESH, ZUNO_OTHER_ISLAND, ZUNO_ONLY_ONE_WAY };

/* Says why there is, or isn't, a path between two points, in one word and, for people, in whole
 * sentences. `text` and `size` may both be null. Errors: TOO_SMALL, with the answer written.
 * Cost: up to a look at all nodes of both islands. Thread: any. */
ZUNO_API zuno_status zuno_mesh_explain(zuno_mesh *mesh, const zuno_point *start,
                                       const zuno_point *goal, int32_t *answer, char *text,
                                       uint32_t *size);

/* ---- Paths from corner to corner ---- */
enum { ZUNO_PLAIN, ZUNO_IMPROVED };

/* Makes an empty path on a mesh, the host's to destroy, to be used again and again. Thread: any. */
ZUNO_API zuno_status zuno_path_create(zuno_mesh *mesh, zuno_path **path);

/* Straightens the path of a search: its start, its goal and all its waypoints (for none, null and 0).
 * NONE, and an empty path, when they are no path on this mesh. ZUNO_PLAIN keeps to the nodes that
 * were found, ZUNO_IMPROVED passes obstacles on their shorter side. Cost: plain some 0.1 us a
 * waypoint; see docs/straight-paths.md. Thread: own. */
ZUNO_API zuno_status zuno_path_straighten(zuno_path *path, const zuno_point *start,
                                          const zuno_point *goal, const zuno_point *waypoints,
                                          uint32_t waypoint_count, int32_t form);

/* Gives the corners, start first and goal last, and, when `length` isn't null, the sum of the legs.
 * Errors: TOO_SMALL. Cost: linear. Thread: own. */
ZUNO_API zuno_status zuno_path_corners(zuno_path *path, zuno_point *corners, uint32_t *count,
                                       double *length);

/* Give places: along the path, `step` apart in the plane, a million at most; its corners, moved off the
 * walls by the margin or as much as fits. Errors: TOO_SMALL. Cost: linear in the places. Thread: own. */
ZUNO_API zuno_status zuno_path_places(zuno_path *path, float step, zuno_place *places,
                                      uint32_t *count);
ZUNO_API zuno_status zuno_path_off_walls(zuno_path *path, float margin, zuno_place *places,
                                         uint32_t *count);

/* ---- Corridors: characters that walk ---- */
typedef struct zuno_corridor_state {
    uint32_t size;
    zuno_place position, goal;
    int32_t has_path;
    int32_t needs_search; /* it was pushed off its path, or its goal moved too far */
} zuno_corridor_state;

/* Makes a character at a place, the host's to destroy. Thread: any. */
ZUNO_API zuno_status zuno_corridor_create(zuno_mesh *mesh, const zuno_place *at,
                                          zuno_corridor **corridor);

/* Puts it on another place, without a path. Thread: own. */
ZUNO_API zuno_status zuno_corridor_place(zuno_corridor *corridor, const zuno_place *at);

/* Lets it follow a path that was straightened on the same mesh, and that it stands at the start of,
 * or next to; else NONE, and nothing changes. The path may go then. Cost: linear. Thread: own. */
ZUNO_API zuno_status zuno_corridor_follow(zuno_corridor *corridor, zuno_path *path);

/* Gives the next corner to steer to, or its own place without a path; bends nearer than `reached`
 * count as passed. Cost: a look some nodes ahead. Thread: own. */
ZUNO_API zuno_status zuno_corridor_next(zuno_corridor *corridor, float reached, zuno_point *corner);

/* Moves it, or its goal, along the surface. Cost: at most 128 nodes. Thread: own. */
ZUNO_API zuno_status zuno_corridor_move(zuno_corridor *corridor, const zuno_point *target);
ZUNO_API zuno_status zuno_corridor_move_goal(zuno_corridor *corridor, const zuno_point *target);

/* Gives its place and its goal, and whether it needs a search. Errors: BAD_SIZE. Thread: own. */
ZUNO_API zuno_status zuno_corridor_look(zuno_corridor *corridor, zuno_corridor_state *state);

/* ---- Recordings ---- */
typedef struct zuno_replay_result {
    uint32_t size;
    int32_t is_whole; /* the recording was closed, not cut off by a crash */
    uint64_t calls, searches;
    uint64_t difference; /* the call, from 1, that first answered otherwise; 0: none did */
} zuno_replay_result;

/* Makes the calls of a recording again, up to the first other answer, which `text`, if not null, is
 * told of. Meshes are looked for in `meshes`, by their digests; with 0 where they were. Errors: BUSY
 * while a session runs, BAD_FILE, BAD_RECORDING, BAD_SIZE; TOO_SMALL, with the result written.
 * Cost: that of the calls. Thread: world. */
ZUNO_API zuno_status zuno_replay(const char *recording, const char *const *meshes,
                                 uint32_t mesh_count, zuno_replay_result *result, char *text,
                                 uint32_t *size);

#ifdef __cplusplus
}
#endif
#endif
