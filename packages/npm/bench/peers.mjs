/**
 * Packages that answer the same question. `start` makes one ready; `open` takes the mesh and gives what
 * answers: `ask(start, goal)` returns the corners of a straightened path, three numbers each, or null.
 */

const reach = [2, 4, 2]; // around a point, where a package asks for it

export const peers = {
    "zunopathfinder": {
        entries: ["zunopathfinder"],
        async start() {
            const { load } = await import("zunopathfinder");
            return load();
        },
        open: (zuno, world) => openOurs(zuno, world, 0),
    },
    "the same, improved": {
        open: (zuno, world) => openOurs(zuno, world, 1),
    },
    "@recast-navigation": {
        entries: ["@recast-navigation/core", "@recast-navigation/generators", "@recast-navigation/wasm"],
        async start() {
            const core = await import("@recast-navigation/core");
            await core.init();
            return core;
        },
        open({ NavMesh, NavMeshQuery, UnsignedCharArray }, { tile }) {
            const mesh = new NavMesh();
            const data = new UnsignedCharArray();
            data.copy(tile);
            if (!mesh.initSolo(data)) throw new Error("the mesh can't be used");
            const query = new NavMeshQuery(mesh, { maxNodes: 65535 });
            const options = { halfExtents: point(reach), maxPathPolys: 8192, maxStraightPathPoints: 8192 };
            return (start, goal) => {
                const { success, path } = query.computePath(point(start), point(goal), options);
                return success ? path.flatMap(({ x, y, z }) => [x, y, z]) : null;
            };
        },
    },
    "navcat": {
        entries: ["navcat"],
        start: () => import("navcat"),
        open(navcat, { vertices, polygons, bounds }) {
            const list = polygons.map((corners) => ({ vertices: [...corners].reverse(), flags: 1, area: 0 }));
            const { vertices: places, polys } = navcat.polygonsToNavMeshTilePolys(list, [...vertices], 0, bounds);
            const mesh = navcat.createNavMesh();
            [mesh.origin, mesh.tileWidth, mesh.tileHeight] = [bounds.slice(0, 3), bounds[3] - bounds[0], bounds[5] - bounds[2]];
            navcat.addTile(mesh, navcat.buildTile({
                bounds, vertices: places, polys, ...navcat.polysToTileDetailMesh(polys), tileX: 0, tileY: 0, tileLayer: 0,
                cellSize: 0.05, cellHeight: 0.05, walkableHeight: 2, walkableRadius: 0, walkableClimb: 1,
            }));
            return (start, goal) => {
                const { success, path } = navcat.findPath(mesh, start, goal, reach, navcat.DEFAULT_QUERY_FILTER);
                return success ? path.flatMap(({ position }) => position) : null;
            };
        },
    },
    "three-pathfinding": {
        entries: ["three-pathfinding"],
        async start() {
            const { Pathfinding } = await import("three-pathfinding");
            return { Pathfinding, three: await import("three") };
        },
        open({ Pathfinding, three }, { vertices, polygons }) {
            const geometry = new three.BufferGeometry();
            geometry.setAttribute("position", new three.Float32BufferAttribute(vertices, 3));
            geometry.setIndex(polygons.flatMap((corners) => corners.slice(2).flatMap((corner, i) => [corner, corners[i + 1], corners[0]])));
            const finder = new Pathfinding();
            finder.setZoneData("all", Pathfinding.createZone(geometry));
            return (start, goal) => {
                const [from, to] = [start, goal].map((end) => new three.Vector3(...end));
                const path = finder.findPath(from, to, "all", finder.getGroup("all", from, true));
                return path?.length ? [...start, ...path.flatMap(({ x, y, z }) => [x, y, z])] : null;
            };
        },
    },
};

function point([x, y, z]) {
    return { x, y, z };
}

function openOurs(zuno, { content }, form) {
    const session = zuno.start(content);
    const mesh = zuno.loadMesh(content);
    const path = mesh.createPath();
    const ask = (start, goal) => {
        const search = session.openSearch(start, goal);
        const isFound = search?.run() === 0 && path.straighten(start, goal, search.waypointsView(), form);
        search?.dispose();
        return isFound ? path.corners() : null;
    };
    return Object.assign(ask, { close: () => session.close() });
}
