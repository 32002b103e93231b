import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { gzipSync } from "node:zlib";
import { Form, load, Priority, Reason, Result, Status } from "zunopathfinder";
import { load as loadExternal } from "zunopathfinder/external";
import { ask } from "./host.mjs";
import { readMesh, root, runNative } from "./support.mjs";

const harbour = readMesh();
const reports = [];
const zuno = await load({ log: (level, text) => reports.push(text) });
const mesh = zuno.loadMesh(harbour);
const [start, goal] = [[2, 0, 2], [40, 0, 20]];

function findPath(session) {
    const search = session.openSearch(start, goal);
    while (search.run(10) === Result.RUNNING);
    return search;
}

test("12,000 queries are answered as by the native library, to the bit", async () => {
    assert.equal(await ask(harbour), runNative("host_cpp", join(root, "worlds/harbour.xml")));
});

test("the module is small, and comes as bytes, compiled, or served", async () => {
    const binary = readFileSync(new URL(import.meta.resolve("zunopathfinder/zuno.wasm")));
    assert.ok(gzipSync(binary, { level: 9 }).length <= 131_000);
    const compiled = await WebAssembly.compile(binary);
    for (const form of [binary, compiled, new Response(binary)]) assert.equal((await loadExternal(form)).version, "1.0.0");
    await assert.rejects(loadExternal(new Response("", { status: 404 })), /404/);
});

test("paths: waypoints by parts, without copies, straightened in each form, off the walls", () => {
    const session = zuno.start(harbour);
    const all = findPath(session).waypoints();
    const search = findPath(session);
    const parts = [2, 0, 3, Infinity, Infinity].map((most) => search.waypoints(most));
    assert.deepEqual(parts.map((part) => part.length / 3), [2, 0, 3, all.length / 3 - 5, 0]);
    assert.deepEqual(parts.flatMap((part) => [...part]), [...all]);
    assert.ok(search.cost() > 40);

    const path = mesh.createPath();
    assert.deepEqual([...path.corners()], []);
    assert.ok(path.straighten(start, goal, findPath(session).waypointsView(), Form.PLAIN));
    const plain = path.length();
    assert.ok(path.straighten(start, goal, all));
    assert.ok(path.length() <= plain && plain < search.cost());
    const corners = path.corners();
    assert.deepEqual([[...corners.slice(0, 3)], [...corners.slice(-3)]], [start, goal]);
    const wide = path.offWalls(0.5);
    assert.equal(wide.length, corners.length / 3);
    assert.ok(mesh.wallDistance(wide[1], 1) > mesh.wallDistance({ ...wide[1], position: [...corners.slice(3, 6)] }, 1));
    assert.ok(path.places(2).length > path.length() / 2);
    assert.ok(!path.straighten(start, goal, all.slice(0, 3)));
    assert.equal(session.openSearch([-99, 0, 0], goal), null);
    assert.equal(session.close().blocks, 0);
});

test("the ground: places, heights, rays, reasons", () => {
    const session = zuno.start(harbour);
    const place = mesh.nearest([2, 1, 2]);
    assert.deepEqual([place.position, place.distance, mesh.findNode(start)], [[2, 0, 2], 1, place.node]);
    assert.deepEqual(mesh.ground([2, 9, 2], 1), null);
    assert.equal(mesh.nearest([2, 1, 2], 0, 0.5), null);
    assert.deepEqual(mesh.random(7), mesh.random(7n));
    assert.equal(mesh.island(place.node), 0);
    assert.equal(mesh.outline(place.node).length, 12);
    assert.ok(mesh.walk(place, [2.5, 0, 2]).isReached && !mesh.walk(place, [-9, 0, 2]).isReached);
    assert.deepEqual(mesh.move(place, [2.5, 0, 2]).position, [2.5, 0, 2]);
    assert.equal(mesh.nearestReachable(start, [40, 1, 20]).distance, 1);
    assert.deepEqual([session.groundHeight(2, 2), session.groundHeight(-9, 0)], [0, null]);
    assert.deepEqual([session.isBlocked(-9, 0), session.isBlocked(2, 2)], [true, false]);
    assert.equal(session.traceRay(2, 2, 3, 2), null);
    assert.equal(session.traceRayInSpace([2, 0, 2], [-5, 0, 2]), session.traceRay(2, 2, -5, 2));
    const { reason, text } = mesh.explain(start, [-99, 0, 0]);
    assert.equal(reason, Reason.POINT_OFF_MESH);
    assert.match(text, /^The start \(2, 0, 2\) stands on node .*\nThe goal .* stands on no node/);
    session.close();
});

test("a scheduler's answers, and a character that follows one", () => {
    const session = zuno.start(harbour);
    const scheduler = session.createScheduler({ slice: 8 });
    const ids = [Priority.URGENT, Priority.BACKGROUND].map((priority) => scheduler.add({ start, goal, priority, deadline: 1 }));
    scheduler.change(ids[1], { start, goal: [-99, 0, 0] });
    assert.equal(scheduler.take(ids[0]), null);
    while (scheduler.figures().open) scheduler.advance(8, 1000);
    const answer = scheduler.take(ids[0]);
    assert.deepEqual([answer.result, answer.goal, answer.isLate], [Result.FOUND, goal, true]);
    assert.equal(scheduler.take(ids[1]).result, Result.OFF_MESH);
    assert.throws(() => scheduler.take(ids[1]), { status: Status.BAD_ARGUMENT });

    const path = mesh.createPath();
    path.straighten(start, goal, answer.waypoints);
    const walker = mesh.createCorridor(mesh.nearest(start));
    assert.ok(walker.follow(path));
    for (let i = 0; i < 100 && walker.state().hasPath; ++i) walker.move(walker.next(0.1));
    assert.deepEqual(walker.state().position.map((value) => Math.round(value)), goal);
    walker.moveGoal([38, 0, 20]);
    walker.place(mesh.nearest(start));
    assert.equal(walker.state().hasPath, false);
    session.close();
});

test("recordings are replayed here, by the native tool, and not over another mesh", () => {
    const session = zuno.start(harbour, { name: "harbour.xml", isRecording: true });
    findPath(session).waypoints();
    assert.ok(session.memoryFigures().isRecording && session.memoryFigures().blocks > 0);
    session.close();
    const { recording } = session;
    const again = zuno.replay(recording, [harbour]);
    assert.deepEqual([again.isWhole, again.searches, again.difference], [true, 1, null]);
    const file = join(tmpdir(), `zuno-${process.pid}.recording`);
    writeFileSync(file, recording);
    assert.match(runNative("zunopath", "replay", file, "--mesh", join(root, "worlds/harbour.xml")), /every answer as recorded/);
    const edited = recording.slice();
    edited[edited.length - 12] ^= 1;
    assert.match(zuno.replay(edited, [harbour]).difference?.text ?? "", /^call \d+/);
    assert.throws(() => zuno.replay(new Uint8Array(9), []), { status: Status.BAD_RECORDING });
});

test("mistakes are errors, and the library goes on", () => {
    const broken = join(root, "build/npm/broken.xml");
    writeFileSync(broken, "<ZUNO><navmesh>");
    const printed = runNative("zunopath", "check", broken);
    const content = readFileSync(broken);
    for (const open of [() => zuno.start(content, { name: broken }), () => zuno.loadMesh(content, broken)])
        assert.throws(open, ({ status, message }) => status === Status.BAD_MESH && printed.includes(message.split("\n")[0]));
    for (const nothing of [new ArrayBuffer(0), new Uint8Array([0, 1, 2, 255])])
        assert.throws(() => zuno.loadMesh(nothing), { name: "ZunoError", status: Status.BAD_MESH });

    const session = zuno.start(harbour);
    const search = session.openSearch(start, goal);
    assert.throws(() => zuno.start(harbour), { status: Status.BUSY });
    assert.throws(() => zuno.replay(new Uint8Array(9), []), { status: Status.BUSY });
    assert.throws(() => mesh.outline(999999), { status: Status.BAD_ARGUMENT, message: /there is no node 999999/ });
    for (const mistake of [() => session.openSearch([1, 2], goal), () => mesh.outline(1n)]) assert.throws(mistake, TypeError);
    assert.throws(() => mesh.createPath().straighten(start, goal, [1, 2]), TypeError);
    assert.throws(() => mesh.createPath().straighten(start, goal, [], 7), /there is no form 7/);
    search.dispose();
    search[Symbol.dispose]();
    assert.throws(() => search.run(), { status: Status.BAD_HANDLE, message: "this Search was disposed of" });
    const left = session.openSearch(start, goal);
    session.close();
    assert.throws(() => left.run(), { status: Status.BAD_HANDLE });
    left.dispose();
    assert.throws(() => session.bounds(), /this Session was disposed of/);
    zuno.start(harbour).close();
});

test("two libraries have a world each", async () => {
    const other = await load();
    const sessions = [zuno, other].map((each) => each.start(harbour));
    assert.deepEqual([...findPath(sessions[0]).waypoints()], [...findPath(sessions[1]).waypoints()]);
    sessions.forEach((session) => session.close());
});
