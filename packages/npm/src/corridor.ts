import { Held } from "./held.js";
import type { Address, Module } from "./module.js";
import type { Path } from "./path.js";
import { Place, placeAt, Point, pointAt, PointLike, putPlace, putPoint } from "./values.js";

export interface CorridorState extends Place {
    goal: Place;
    hasPath: boolean;
    /** It was pushed off its path, or its goal moved too far. */
    needsSearch: boolean;
}

/** A character that walks on a mesh. */
export class Corridor extends Held {
    /** @internal */
    constructor(module: Module, handle: Address) {
        super(module, handle);
    }

    /** Puts it on another place, without a path. */
    place(at: Place): void {
        this.module.call("corridor_place", this.handle, putPlace(this.module, this.module.structs, at));
    }

    /** Lets it follow a path that it stands at the start of, or next to; else false. The path may go then. */
    follow(path: Path): boolean {
        return this.module.call("corridor_follow", this.handle, path.handle);
    }

    /** The next corner to steer to, or its own place without a path; bends nearer than `reached` count as passed. */
    next(reached: number): Point {
        const { module } = this;
        module.call("corridor_next", this.handle, reached, module.structs);
        return pointAt(module, module.structs);
    }

    /** Moves it along the surface. */
    move(target: PointLike): void {
        this.module.call("corridor_move", this.handle, putPoint(this.module, this.module.structs, target));
    }

    /** Moves its goal along the surface. */
    moveGoal(target: PointLike): void {
        this.module.call("corridor_move_goal", this.handle, putPoint(this.module, this.module.structs, target));
    }

    /** Where it stands, where it wants to, and whether it needs a search. */
    state(): CorridorState {
        const { module } = this;
        const at = module.structs;
        module.words[at >> 2] = 44;
        module.call("corridor_look", this.handle, at);
        const [hasPath, needsSearch] = module.words.subarray((at + 36) >> 2, (at + 44) >> 2);
        return { ...placeAt(module, at + 4), goal: placeAt(module, at + 20), hasPath: hasPath === 1, needsSearch: needsSearch === 1 };
    }
}
