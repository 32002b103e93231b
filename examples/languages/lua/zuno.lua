--- The navigation runtime for LuaJIT, by ffi over the C library: see zuno.h for what each call does
--- and costs. Failures raise an error, a table with text, status, type and parameters; what is not
--- there is nil. Objects free what they hold when they are closed or collected.
--- The library is found by the name in ZUNO_LIBRARY, else where the system looks.
local ffi = require("ffi")
ffi.cdef [[
typedef int32_t zuno_status;
enum { ZUNO_OK = 0, ZUNO_NONE = 1, ZUNO_BAD_ARGUMENT = -1, ZUNO_BAD_HANDLE = -2, ZUNO_BAD_SIZE = -3,
    ZUNO_TOO_SMALL = -4, ZUNO_BUSY = -5, ZUNO_NO_MEMORY = -6, ZUNO_BAD_FILE = -7, ZUNO_BAD_MESH =
    -8, ZUNO_BAD_RECORDING = -9, ZUNO_BAD_VERSION = -10, ZUNO_FAILED = -11 };
typedef struct zuno_session zuno_session;
typedef struct zuno_search zuno_search;
typedef struct zuno_scheduler zuno_scheduler;
typedef struct zuno_mesh zuno_mesh;
typedef struct zuno_path zuno_path;
typedef struct zuno_corridor zuno_corridor;
typedef struct zuno_point { float x, y, z; } zuno_point;
typedef struct zuno_point2 { float x, y; } zuno_point2;
zuno_status zuno_check_version(uint32_t header, uint32_t *library);
typedef struct zuno_parameter { const char *name, *value; } zuno_parameter;
typedef struct zuno_error { uint32_t size; zuno_status status; const char *text; const char *type;
    const zuno_parameter *parameters; uint32_t parameter_count; } zuno_error;
zuno_status zuno_last_error(zuno_error *error);
enum { ZUNO_LOG_DEBUG, ZUNO_LOG_MESSAGE, ZUNO_LOG_WARNING, ZUNO_LOG_ERROR, ZUNO_LOG_REPORT };
typedef void (*zuno_log)(void *user, int32_t level, const char *text, const char *file, uint32_t
    line);
zuno_status zuno_set_log(zuno_log log, void *user);
typedef struct zuno_memory_functions { void *user; void *(*allocate)(void *user, uint32_t size);
    void (*free)(void *user, void *block); } zuno_memory_functions;
typedef struct zuno_file_functions { void *user; int64_t (*length)(void *user, const char *name);
    int32_t (*read)(void *user, const char *name, uint64_t offset, void *bytes, uint32_t count); }
    zuno_file_functions;
typedef struct zuno_settings { uint32_t size; const char *base_folder; const char *recording; const
    zuno_memory_functions *memory; const zuno_file_functions *files; } zuno_settings;
typedef struct zuno_memory { uint32_t size; int32_t is_recording; uint64_t allocations, frees,
    blocks, bytes, peak_bytes; } zuno_memory;
zuno_status zuno_start(const zuno_settings *settings, const char *mesh, zuno_session **session);
zuno_status zuno_close(zuno_session *session, zuno_memory *left);
zuno_status zuno_memory_figures(zuno_session *session, zuno_memory *figures);
zuno_status zuno_destroy(void *handle);
zuno_status zuno_bounds(zuno_session *session, zuno_point2 *low, zuno_point2 *high);
zuno_status zuno_is_blocked(zuno_session *session, float x, float y, int32_t *blocked);
zuno_status zuno_ground_height(zuno_session *session, float x, float y, float *height);
zuno_status zuno_trace_ray(zuno_session *session, float from_x, float from_y, float to_x, float
    to_y, float *distance);
zuno_status zuno_trace_ray_in_space(zuno_session *session, const zuno_point *from, const zuno_point
    *to, float *distance);
zuno_status zuno_search_open(zuno_session *session, const zuno_point *start, const zuno_point *goal,
    zuno_search **search);
enum { ZUNO_FOUND, ZUNO_RUNNING, ZUNO_NO_PATH, ZUNO_OFF_MESH };
zuno_status zuno_search_run(zuno_search *search, uint32_t budget, int32_t *state);
zuno_status zuno_search_waypoints(zuno_search *search, zuno_point *points, uint32_t *count);
zuno_status zuno_search_cost(zuno_search *search, float *cost);
typedef struct zuno_scheduler_settings { uint32_t size; uint32_t slice; uint32_t turn; uint32_t
    patience[3]; } zuno_scheduler_settings;
enum { ZUNO_URGENT, ZUNO_NORMAL, ZUNO_BACKGROUND };
typedef struct zuno_request { uint32_t size; int32_t priority; zuno_point start, goal; uint32_t
    deadline; } zuno_request;
typedef struct zuno_answer { uint32_t size; int32_t result; zuno_point start, goal; float cost;
    uint32_t frames_waited; uint64_t expansions; int32_t is_late; uint32_t waypoint_count; }
    zuno_answer;
typedef struct zuno_scheduler_figures { uint32_t size; uint32_t open; uint64_t frames, added, found,
    no_path, off_mesh, cancelled, late; uint64_t expansions, frame_expansions, frame_nanoseconds,
    frames_waited, most_frames_waited, longest_queue; } zuno_scheduler_figures;
zuno_status zuno_scheduler_create(zuno_session *session, const zuno_scheduler_settings *settings,
    zuno_scheduler **scheduler);
zuno_status zuno_scheduler_add(zuno_scheduler *scheduler, const zuno_request *request, uint64_t
    *id);
zuno_status zuno_scheduler_change(zuno_scheduler *scheduler, uint64_t id, const zuno_request
    *request);
zuno_status zuno_scheduler_cancel(zuno_scheduler *scheduler, uint64_t id);
zuno_status zuno_scheduler_advance(zuno_scheduler *scheduler, uint64_t expansions, uint64_t
    nanoseconds);
zuno_status zuno_scheduler_take(zuno_scheduler *scheduler, uint64_t id, zuno_answer *answer,
    zuno_point *waypoints, uint32_t *count);
zuno_status zuno_scheduler_look(zuno_scheduler *scheduler, zuno_scheduler_figures *figures);
typedef struct zuno_place { uint32_t node; zuno_point position; } zuno_place;
typedef struct zuno_mesh_figures { uint32_t size; uint32_t nodes, vertices, islands; uint64_t bytes;
    } zuno_mesh_figures;
zuno_status zuno_mesh_load(zuno_session *session, const char *name, zuno_mesh **mesh);
zuno_status zuno_mesh_look(zuno_mesh *mesh, zuno_mesh_figures *figures);
zuno_status zuno_mesh_outline(zuno_mesh *mesh, uint32_t node, zuno_point *points, uint32_t *count);
zuno_status zuno_mesh_island(zuno_mesh *mesh, uint32_t node, uint32_t *island);
zuno_status zuno_mesh_find_node(zuno_mesh *mesh, const zuno_point *at, uint32_t *node);
zuno_status zuno_mesh_ground(zuno_mesh *mesh, const zuno_point *at, float height, zuno_place
    *place);
zuno_status zuno_mesh_nearest(zuno_mesh *mesh, const zuno_point *at, float radius, float height,
    zuno_place *place, float *distance);
zuno_status zuno_mesh_nearest_reachable(zuno_mesh *mesh, const zuno_point *start, const zuno_point
    *goal, zuno_place *place, float *distance);
zuno_status zuno_mesh_random(zuno_mesh *mesh, uint64_t seed, zuno_place *place);
zuno_status zuno_mesh_move(zuno_mesh *mesh, const zuno_place *from, const zuno_point *target,
    zuno_place *end);
zuno_status zuno_mesh_walk(zuno_mesh *mesh, const zuno_place *from, const zuno_point *target,
    zuno_place *end, int32_t *reached);
zuno_status zuno_mesh_wall_distance(zuno_mesh *mesh, const zuno_place *from, float limit, float
    *distance);
enum { ZUNO_POSSIBLE, ZUNO_POINT_OFF_MESH, ZUNO_OTHER_ISLAND, ZUNO_ONLY_ONE_WAY };
zuno_status zuno_mesh_explain(zuno_mesh *mesh, const zuno_point *start, const zuno_point *goal,
    int32_t *answer, char *text, uint32_t *size);
enum { ZUNO_PLAIN, ZUNO_IMPROVED };
zuno_status zuno_path_create(zuno_mesh *mesh, zuno_path **path);
zuno_status zuno_path_straighten(zuno_path *path, const zuno_point *start, const zuno_point *goal,
    const zuno_point *waypoints, uint32_t waypoint_count, int32_t form);
zuno_status zuno_path_corners(zuno_path *path, zuno_point *corners, uint32_t *count, double
    *length);
zuno_status zuno_path_places(zuno_path *path, float step, zuno_place *places, uint32_t *count);
typedef struct zuno_corridor_state { uint32_t size; zuno_place position, goal; int32_t has_path;
    int32_t needs_search; } zuno_corridor_state;
zuno_status zuno_corridor_create(zuno_mesh *mesh, const zuno_place *at, zuno_corridor **corridor);
zuno_status zuno_corridor_place(zuno_corridor *corridor, const zuno_place *at);
zuno_status zuno_corridor_follow(zuno_corridor *corridor, zuno_path *path);
zuno_status zuno_corridor_next(zuno_corridor *corridor, float reached, zuno_point *corner);
zuno_status zuno_corridor_move(zuno_corridor *corridor, const zuno_point *target);
zuno_status zuno_corridor_move_goal(zuno_corridor *corridor, const zuno_point *target);
zuno_status zuno_corridor_look(zuno_corridor *corridor, zuno_corridor_state *state);
typedef struct zuno_replay_result { uint32_t size; int32_t is_whole; uint64_t calls, searches;
    uint64_t difference; } zuno_replay_result;
zuno_status zuno_replay(const char *recording, const char *const *meshes, uint32_t mesh_count,
    zuno_replay_result *result, char *text, uint32_t *size);
]]
local library = ffi.load(os.getenv("ZUNO_LIBRARY") or "zunoc")
local zuno = { FOREVER = 0xFFFFFFFFFFFFFFFFULL, library = library }
for _, name in ipairs { "FOUND", "RUNNING", "NO_PATH", "OFF_MESH", "URGENT", "NORMAL", "BACKGROUND",
    "PLAIN", "IMPROVED" } do
    zuno[name] = library["ZUNO_" .. name]
end
zuno.Point = ffi.typeof("zuno_point")
zuno.Place = ffi.typeof("zuno_place")
local failure = { __tostring = function(self) return self.text end }

--- A struct with its size, and with what is given.
local function sized(kind, values)
    local made = ffi.new(kind, values or {})
    made.size = ffi.sizeof(kind)
    return made
end

--- Returns whether what was asked for is there.
local function call(name, ...)
    local status = library["zuno_" .. name](...)
    if status >= 0 then return status == 0 end
    local e = sized("zuno_error")
    library.zuno_last_error(e)
    local raised = { status = e.status, text = ffi.string(e.text), type = ffi.string(e.type), parameters = {} }
    for i = 0, e.parameter_count - 1 do
        raised.parameters[ffi.string(e.parameters[i].name)] = ffi.string(e.parameters[i].value)
    end
    error(setmetatable(raised, failure), 0)
end

--- What a call puts in its last argument, or nil. Structs are made as such: an element of an array
--- would not keep the array.
local function value(kind, name, ...)
    local isStruct = kind == "zuno_point" or kind == "zuno_place"
    local box = ffi.new(isStruct and kind or kind .. "[1]")
    local arguments = { ... }
    local count = select("#", ...)
    arguments[count + 1] = box
    if call(name, unpack(arguments, 1, count + 1)) then return isStruct and box or box[0] end
end

--- An array, by the rule for arrays, and its length.
local function list(kind, get)
    local count = ffi.new("uint32_t[1]")
    get(nil, count)
    local items = ffi.new(kind .. "[?]", math.max(count[0], 1))
    get(items, count)
    return items, count[0]
end

--- A class whose objects hold a handle, which `make` gives. `free` ends them.
local function class(make, free)
    local methods = {}
    methods.__index = methods
    function methods:close()
        if self.handle == nil then return end
        local handle = ffi.gc(self.handle, nil)
        self.handle = nil
        return (free or library.zuno_destroy)(handle)
    end
    return methods, function(...)
        local handle = make(...)
        if handle == nil then return end
        return setmetatable({ handle = ffi.gc(handle, free or library.zuno_destroy) }, methods)
    end
end

local Session, Search, Scheduler, Mesh, Path, Corridor

--- A running world. `settings` (or nil): base_folder, recording.
Session, zuno.start = class(function(mesh, settings)
    return value("zuno_session*", "start", sized("zuno_settings", settings), mesh)
end, function(handle)
    local left = sized("zuno_memory")
    call("close", handle, left)
    return left
end)
function Session:memory()
    local figures = sized("zuno_memory")
    call("memory_figures", self.handle, figures)
    return figures
end
function Session:bounds()
    local low, high = ffi.new("zuno_point2"), ffi.new("zuno_point2")
    call("bounds", self.handle, low, high)
    return low, high
end
function Session:is_blocked(x, y) return value("int32_t", "is_blocked", self.handle, x, y) == 1 end
function Session:ground_height(x, y) return value("float", "ground_height", self.handle, x, y) end
function Session:trace_ray(x1, y1, x2, y2) return value("float", "trace_ray", self.handle, x1, y1, x2, y2) end

Search, Session.search = class(function(session, start, goal)
    return value("zuno_search*", "search_open", session.handle, start, goal)
end)
function Search:run(budget) return value("int32_t", "search_run", self.handle, budget) end
--- The next waypoints, at most so many, and their number.
function Search:waypoints(most)
    local points, count = ffi.new("zuno_point[?]", most), ffi.new("uint32_t[1]", most)
    call("search_waypoints", self.handle, points, count)
    return points, count[0]
end
function Search:cost() return value("float", "search_cost", self.handle) end

Scheduler, Session.scheduler = class(function(session)
    return value("zuno_scheduler*", "scheduler_create", session.handle, nil)
end)
function Scheduler:add(start, goal, priority, deadline)
    return value("uint64_t", "scheduler_add", self.handle, sized("zuno_request",
        { start = start, goal = goal, priority = priority or zuno.NORMAL, deadline = deadline or 0 }))
end
function Scheduler:cancel(request) call("scheduler_cancel", self.handle, request) end
function Scheduler:advance(expansions, nanoseconds)
    call("scheduler_advance", self.handle, expansions or zuno.FOREVER, nanoseconds or zuno.FOREVER)
end
--- An answer, its waypoints and their number; nil while the request is open.
function Scheduler:take(request)
    local answer, count = sized("zuno_answer"), ffi.new("uint32_t[1]")
    if not call("scheduler_take", self.handle, request, answer, nil, count) then return end
    local points = ffi.new("zuno_point[?]", math.max(count[0], 1))
    call("scheduler_take", self.handle, request, answer, points, count)
    return answer, points, count[0]
end
function Scheduler:figures()
    local figures = sized("zuno_scheduler_figures")
    call("scheduler_look", self.handle, figures)
    return figures
end

--- The ground, without a world; read through a session's files, or, without one, the C library's.
Mesh, zuno.mesh = class(function(name, session)
    return value("zuno_mesh*", "mesh_load", session and session.handle, name)
end)
function Mesh:figures()
    local figures = sized("zuno_mesh_figures")
    call("mesh_look", self.handle, figures)
    return figures
end
function Mesh:outline(node)
    return list("zuno_point", function(...) call("mesh_outline", self.handle, node, ...) end)
end
function Mesh:ground(at, height) return value("zuno_place", "mesh_ground", self.handle, at, height or math.huge) end
function Mesh:nearest(at, radius, height)
    local place, distance = ffi.new("zuno_place"), ffi.new("float[1]")
    if call("mesh_nearest", self.handle, at, radius, height, place, distance) then return place, distance[0] end
end
function Mesh:island(node) return value("uint32_t", "mesh_island", self.handle, node) end
function Mesh:random(seed) return value("zuno_place", "mesh_random", self.handle, seed) end
function Mesh:move(place, target) return value("zuno_place", "mesh_move", self.handle, place, target) end
--- Whole sentences on why there is, or isn't, a path.
function Mesh:explain(start, goal)
    local answer = ffi.new("int32_t[1]")
    return ffi.string((list("char", function(...)
        call("mesh_explain", self.handle, start, goal, answer, ...)
    end)))
end

--- A path from corner to corner, and a character that walks.
Path, Mesh.path = class(function(mesh) return value("zuno_path*", "path_create", mesh.handle) end)
function Path:straighten(start, goal, waypoints, count, form)
    return call("path_straighten", self.handle, start, goal, waypoints, count, form or zuno.IMPROVED)
end
function Path:corners()
    return list("zuno_point", function(items, count) call("path_corners", self.handle, items, count, nil) end)
end
Corridor, Mesh.corridor = class(function(mesh, place)
    return value("zuno_corridor*", "corridor_create", mesh.handle, place)
end)
function Corridor:follow(path) return call("corridor_follow", self.handle, path.handle) end
function Corridor:next(reached) return value("zuno_point", "corridor_next", self.handle, reached) end
function Corridor:move(target) call("corridor_move", self.handle, target) end
function Corridor:state()
    local state = sized("zuno_corridor_state")
    call("corridor_look", self.handle, state)
    return state
end

call("check_version", 10000, nil)
return zuno
