import { load, Result } from "/node_modules/zunopathfinder/dist/index.js";

onmessage = async ({ data: mesh }) => {
    const search = (await load()).start(mesh).openSearch([2, 0, 2], [40, 0, 20]);
    while (search.run(10) === Result.RUNNING);
    postMessage(search.waypoints().length / 3);
};
