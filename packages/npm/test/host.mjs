/** Walks a path, asks 12,000 questions and gives the digest of the answers, as the hosts of the other languages do. */
import { load, Result } from "zunopathfinder";

const words = new DataView(new ArrayBuffer(4));

class Digest {
    low = 0x84222325;
    high = 0xcbf29ce4;

    /** FNV-1a over words of 32 bits. */
    add(word) {
        const low = (this.low ^ word) >>> 0;
        const product = low * 0x1b3;
        const carried = Math.floor(product / 2 ** 32) + this.high * 0x1b3 + low * 0x100;
        [this.low, this.high] = [product % 2 ** 32, carried % 2 ** 32];
    }
    float(value) {
        words.setFloat32(0, value);
        this.add(words.getUint32(0));
    }
    toString() {
        return [this.high, this.low].map((half) => half.toString(16).padStart(8, "0")).join("");
    }
}

/** Returns the lines that the other hosts print. */
export async function ask(mesh) {
    const session = (await load()).start(mesh);
    const { low, high } = session.bounds();
    const digest = new Digest();
    let seed = 11, firstPath = "";
    const between = (from, to) => {
        seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
        return Math.fround(from + Math.fround(Math.fround(to - from) * Math.fround((seed >>> 16) / 65536)));
    };
    for (let i = 0; i < 3000; ++i) {
        const [start, goal] = [0, 1].map(() => {
            const [x, z] = [between(low[0], high[0]), between(low[1], high[1])];
            const end = [x, session.groundHeight(x, z) ?? 0, z];
            end.forEach((value) => digest.float(value));
            return end;
        });
        digest.add(session.isBlocked(goal[0], goal[2]) ? 1 : 0);
        digest.float(session.traceRay(start[0], start[2], goal[0], goal[2]) ?? -1);
        const search = session.openSearch(start, goal);
        if (!search) continue;
        let state;
        do state = search.run(64);
        while (state === Result.RUNNING);
        const waypoints = search.waypoints();
        waypoints.forEach((value) => digest.float(value));
        digest.add(state);
        digest.float(search.cost());
        if (!firstPath && waypoints.length) firstPath = `walked ${waypoints.length / 3} steps, cost ${search.cost().toFixed(3)}\n`;
        search.dispose();
    }
    session.close();
    return `${firstPath}digest ${digest}\n`;
}
