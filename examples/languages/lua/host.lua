--- Walks a path, asks 12,000 questions and prints the digest of the answers: host.lua MESH
local ffi, bit, zuno = require("ffi"), require("bit"), require("zuno")
local digest, seed = 0xCBF29CE484222325ULL, 11
local word = ffi.new("union { float number; int32_t whole; uint32_t bits; }")

local function add(kind, ...) -- FNV-1a over words of 32 bits
    for _, number in ipairs { ... } do
        word[kind] = number
        digest = bit.bxor(digest, 0ULL + word.bits) * 0x100000001B3ULL
    end
end
local function between(low, high)
    seed = (seed * 1664525 + 1013904223) % 2 ^ 32
    return low + (high - low) * (math.floor(seed / 65536) / 65536)
end

local session = zuno.start(arg[1])
local low, high = session:bounds()
local steps = 0 -- of the first path
for _ = 1, 3000 do
    local ends = { zuno.Point(), zuno.Point() }
    for _, e in ipairs(ends) do
        e.x, e.z = between(low.x, high.x), between(low.y, high.y)
        e.y = session:ground_height(e.x, e.z) or 0
        add("number", e.x, e.y, e.z)
    end
    local from, to = ends[1], ends[2]
    add("whole", session:is_blocked(to.x, to.z) and 1 or 0)
    add("number", session:trace_ray(from.x, from.z, to.x, to.z) or -1)
    local search, state = session:search(from, to), zuno.RUNNING
    while search and state == zuno.RUNNING do state = search:run(64) end
    local points, count = nil, 0
    if search then points, count = search:waypoints(4096) end
    for i = 0, count - 1 do add("number", points[i].x, points[i].y, points[i].z) end
    if search then add("whole", state) add("number", search:cost()) end
    if steps == 0 and count > 0 then print(("walked %d steps, cost %.3f"):format(count, search:cost())) end
    steps = steps + count
    if search then search:close() end
end
print("digest " .. bit.tohex(digest))
