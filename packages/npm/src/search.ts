import { Held } from "./held.js";
import type { Address, Module } from "./module.js";
import type { Result } from "./statuses.js";

const mostExpansions = 0xffffffff;
const roomOfPoints = 4096;

/** A search that is advanced a little at a time. It ends with its session, if not before. */
export class Search extends Held {
    /** @internal */
    constructor(module: Module, handle: Address) {
        super(module, handle);
    }

    /** Advances by at most so many expansions, and says how the search stands. */
    run(budget = Infinity): Result {
        const { module } = this;
        module.call("search_run", this.handle, Math.min(Math.max(budget, 0), mostExpansions), module.structs);
        return module.words[module.structs >> 2] as Result;
    }

    /** The next waypoints of a found path, three numbers each, each given once; all that are left without a number. */
    waypoints(most = Infinity): Float32Array {
        return this.waypointsView(most).slice();
    }

    /** The same as a view into the module's memory, without a copy: it holds until the next call on any object of this module. */
    waypointsView(most = Infinity): Float32Array {
        const { module } = this;
        const count = module.structs;
        let have = 0;
        for (let room = Math.min(most, roomOfPoints); ; room = Math.min(most, 2 * room)) {
            const list = this.keepRoom(room, have);
            module.words[count >> 2] = room - have;
            module.call("search_waypoints", this.handle, list + 12 * have, count);
            have += module.words[count >> 2];
            if (have < room || have === most) return module.floats.subarray(list >> 2, (list >> 2) + 3 * have);
        }
    }

    /** The cost of a found path once its waypoints were asked for; 0 before. */
    cost(): number {
        const { module } = this;
        module.call("search_cost", this.handle, module.structs);
        return module.floats[module.structs >> 2];
    }

    /** Room for so many points, with those at its beginning that are there. */
    private keepRoom(points: number, have: number): Address {
        const { module } = this;
        const kept = have ? module.floats.slice(module.room(0) >> 2, (module.room(0) >> 2) + 3 * have) : null;
        const list = module.room(12 * points);
        if (kept) module.floats.set(kept, list >> 2);
        return list;
    }
}
