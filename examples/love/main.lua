--- Fifty characters in a harbour: click to send them. Below, the budget of a frame (drag), and what
--- navigation took in the last frames. Run: ZUNO_LIBRARY=... love examples/love [MESH]
--- Keys: b shows blocked cells, p shows paths, f12 saves a picture, escape ends.
local source = love.filesystem.getSource()
package.path = source .. "/../languages/lua/?.lua;" .. package.path
local ffi, zuno = require("ffi"), require("zuno")

local SCALE, PANEL = 10, 100 -- pixels for a unit of the mesh, and below the map
local COUNT, SPEED = 50, 8 -- characters; units a second
local ANSWERS = 8 -- that are made paths of in one frame; the others wait a frame
local CELL = 0.5 -- units: how fine blocked cells are shown

local session, mesh, scheduler, path, low, high
local walkers = {}
local map, cells -- drawn once
local shows = { b = true, p = true }
local budget, mostBudget = 500, 2000 -- us
local frames, frameCount, worst = {}, 0, 0 -- ms of navigation
local flag -- where they were sent

--- The time that this thread has used: what other programs take is not navigation's.
local now = love.timer.getTime
if jit.os == "Linux" then
    ffi.cdef "typedef struct { long s, ns; } zuno_time; int clock_gettime(int, zuno_time *);"
    local time = ffi.new("zuno_time")
    now = function()
        ffi.C.clock_gettime(3, time) -- of this thread
        return tonumber(time.s) + tonumber(time.ns) * 1e-9
    end
end

local function toScreen(x, z) return (x - low.x) * SCALE, (z - low.y) * SCALE end

--- All nodes, the lowest first, the brighter the higher.
local function drawNodes()
    local nodes = {}
    for node = 0, mesh:figures().nodes - 1 do
        local points, count = mesh:outline(node)
        local outline, height = {}, 0
        for i = 0, count - 1 do
            local x, y = toScreen(points[i].x, points[i].z)
            outline[#outline + 1], outline[#outline + 2] = x, y
            height = height + points[i].y / count
        end
        nodes[#nodes + 1] = { outline = outline, height = height }
    end
    table.sort(nodes, function(a, b) return a.height < b.height end)
    for _, node in ipairs(nodes) do
        local shade = math.min(node.height / 10, 0.4)
        love.graphics.setColor(0.36 + shade, 0.46 + shade, 0.42 + shade)
        love.graphics.polygon("fill", node.outline)
        love.graphics.setColor(0, 0, 0, 0.12)
        love.graphics.polygon("line", node.outline)
    end
end

local function drawCells()
    love.graphics.setColor(0.9, 0.35, 0.3, 0.75)
    for z = low.y + CELL / 2, high.y, CELL do
        for x = low.x + CELL / 2, high.x, CELL do
            if session:is_blocked(x, z) then
                local px, py = toScreen(x, z)
                love.graphics.rectangle("fill", px - 1, py - 1, 2, 2)
            end
        end
    end
end

local function onCanvas(draw)
    local canvas = love.graphics.newCanvas((high.x - low.x) * SCALE, (high.y - low.y) * SCALE)
    love.graphics.setCanvas(canvas)
    draw()
    love.graphics.setCanvas()
    love.graphics.setColor(1, 1, 1)
    return canvas
end

--- Places by chance on the largest island.
local function placeWalkers()
    local seed = 0
    while #walkers < COUNT do
        seed = seed + 1
        local place = mesh:random(seed)
        if mesh:island(place.node) == 0 then
            walkers[#walkers + 1] = { corridor = mesh:corridor(place), hue = #walkers / COUNT }
        end
    end
end

function love.load(arguments)
    local name = arguments[1] or source .. "/../../worlds/harbour.xml"
    session = zuno.start(name)
    mesh = zuno.mesh(name, session)
    scheduler = session:scheduler()
    path = mesh:path()
    low, high = session:bounds()
    placeWalkers()
    map = onCanvas(drawNodes)
    cells = onCanvas(drawCells)
end

--- Sends all to places around a point: rings of them, so that they don't stand in each other.
local function send(x, z)
    local height = session:ground_height(x, z)
    if not height then return end
    local placed = mesh:nearest(zuno.Point(x, height, z), 3, 3)
    if not placed then return end
    flag = { x = x, z = z }
    for i, walker in ipairs(walkers) do
        local angle, away = i * 2.4, 0.45 * math.sqrt(i)
        local goal = zuno.Point(x + away * math.cos(angle), placed.position.y, z + away * math.sin(angle))
        local place = mesh:nearest(goal, 2, 2)
        if not place or mesh:island(place.node) ~= mesh:island(placed.node) then place = placed end
        if walker.request then scheduler:cancel(walker.request) end
        walker.goal = zuno.Point(place.position.x, place.position.y, place.position.z)
        walker.request = scheduler:add(walker.corridor:state().position.position, walker.goal)
    end
end

--- Takes an answer, if there is one, and follows it.
local function takeAnswer(walker)
    local answer, points, count = scheduler:take(walker.request)
    if not answer then return false end
    walker.request, walker.corners = nil, nil
    if answer.result == zuno.FOUND and path:straighten(answer.start, answer.goal, points, count) then
        walker.corridor:follow(path)
        local corners, number = path:corners()
        walker.corners = {}
        for i = 0, number - 1 do
            local px, py = toScreen(corners[i].x, corners[i].z)
            walker.corners[#walker.corners + 1], walker.corners[#walker.corners + 2] = px, py
        end
    end
    return true
end

local function walk(walker, seconds)
    local state = walker.corridor:state()
    if state.has_path == 1 then
        local at, corner = state.position.position, walker.corridor:next(0.2)
        local dx, dy, dz = corner.x - at.x, corner.y - at.y, corner.z - at.z
        local distance = math.sqrt(dx * dx + dy * dy + dz * dz)
        local share = distance > 0 and math.min(1, SPEED * seconds / distance) or 0
        walker.corridor:move(zuno.Point(at.x + dx * share, at.y + dy * share, at.z + dz * share))
        state = walker.corridor:state()
    end
    walker.x, walker.z = state.position.position.x, state.position.position.z
end

function love.update(seconds)
    local begin = now()
    scheduler:advance(nil, budget * 1000)
    local taken = 0
    for _, walker in ipairs(walkers) do
        if walker.request and taken < ANSWERS and takeAnswer(walker) then taken = taken + 1 end
        walk(walker, math.min(seconds, 0.1))
    end
    local took = (now() - begin) * 1000
    frameCount = frameCount + 1
    frames[frameCount % 200] = took
    if frameCount > 30 then worst = math.max(worst, took) end -- until then code is compiled
end

local function drawWalkers()
    for _, walker in ipairs(walkers) do
        local x, y = toScreen(walker.x, walker.z)
        local hue = walker.hue * 2 * math.pi
        love.graphics.setColor(0.75 + 0.25 * math.cos(hue), 0.75 + 0.25 * math.cos(hue + 2.1),
            0.75 + 0.25 * math.cos(hue + 4.2), 0.45)
        if shows.p and walker.corners and #walker.corners > 3 then love.graphics.line(walker.corners) end
        love.graphics.setColor(0.1, 0.1, 0.15)
        love.graphics.circle("fill", x, y, 4.5)
        love.graphics.setColor(0.75 + 0.25 * math.cos(hue), 0.75 + 0.25 * math.cos(hue + 2.1),
            0.75 + 0.25 * math.cos(hue + 4.2))
        love.graphics.circle("fill", x, y, 3.5)
    end
    if flag then
        local x, y = toScreen(flag.x, flag.z)
        love.graphics.setColor(1, 0.85, 0.2)
        love.graphics.polygon("fill", x, y, x, y - 16, x + 11, y - 12, x, y - 8)
    end
end

local function sliderOf(y) -- where the slider lies
    return 20, y + 62, 300
end

local function drawPanel(y)
    local figures = scheduler:figures()
    love.graphics.setColor(0.1, 0.11, 0.14)
    love.graphics.rectangle("fill", 0, y, love.graphics.getWidth(), PANEL)
    love.graphics.setColor(0.9, 0.9, 0.9)
    love.graphics.print(("budget of a frame: %d us"):format(budget), 20, y + 34)
    love.graphics.print(("%d waiting, %d found, at most %d frames"):format(figures.open,
        tonumber(figures.found), tonumber(figures.most_frames_waited)), 20, y + 10)
    local x, sy, width = sliderOf(y)
    love.graphics.rectangle("line", x, sy, width, 12)
    love.graphics.setColor(0.3, 0.7, 1)
    love.graphics.rectangle("fill", x, sy, width * budget / mostBudget, 12)
    local left, bottom = 400, y + PANEL - 12
    for i = 0, 199 do -- the oldest first; 2 ms are 70 pixels
        local took = frames[(frameCount + 1 + i) % 200] or 0
        love.graphics.setColor(took > 2 and 1 or 0.4, took > 2 and 0.3 or 0.85, 0.5)
        love.graphics.rectangle("fill", left + i * 3, bottom - took * 35, 2, took * 35)
    end
    love.graphics.setColor(1, 1, 1, 0.4)
    love.graphics.line(left, bottom - 70, left + 600, bottom - 70)
    love.graphics.print(("navigation: 2 ms; at most %.2f ms so far"):format(worst), left, bottom - 84)
end

function love.draw()
    love.graphics.clear(0.16, 0.24, 0.33)
    love.graphics.setColor(1, 1, 1)
    love.graphics.draw(map)
    if shows.b then love.graphics.draw(cells) end
    drawWalkers()
    drawPanel(love.graphics.getHeight() - PANEL)
end

local function drag(x)
    local left, _, width = sliderOf(0)
    budget = math.floor(math.max(20, math.min(1, (x - left) / width) * mostBudget))
end

function love.mousepressed(x, y, button)
    if y >= love.graphics.getHeight() - PANEL then
        drag(x)
    elseif button == 1 then
        send(x / SCALE + low.x, y / SCALE + low.y)
    end
end

function love.mousemoved(x, y)
    if love.mouse.isDown(1) and y >= love.graphics.getHeight() - PANEL then drag(x) end
end

function love.keypressed(key)
    if shows[key] ~= nil then shows[key] = not shows[key] end
    if key == "f12" then love.graphics.captureScreenshot("harbour.png") end
    if key == "escape" then love.event.quit() end
end

--- Says how it went: for people, and for the test.
function love.quit()
    local there = 0
    for _, walker in ipairs(walkers) do
        local goal = walker.goal
        if goal and math.abs(walker.x - goal.x) + math.abs(walker.z - goal.z) < 0.1 then there = there + 1 end
    end
    print(("%d of %d at their goals; flag %s; budget %d us; %d frames, navigation at most %.3f ms"):format(there,
        COUNT, flag and ("%.1f %.1f"):format(flag.x, flag.z) or "none", budget, frameCount, worst))
    mesh:close()
    print(("left behind: %d blocks"):format(tonumber(session:close().blocks)))
end
