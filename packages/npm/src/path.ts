import { Held } from "./held.js";
import type { Address, Module } from "./module.js";
import { Form } from "./statuses.js";
import { Place, placeAt, PointLike, putPoint, putPoints } from "./values.js";

/** A path from corner to corner. Empty until it is made of a search's waypoints. */
export class Path extends Held {
    /** @internal */
    constructor(module: Module, handle: Address) {
        super(module, handle);
    }

    /**
     * Straightens the path of a search: its start, its goal and all its waypoints. False, and an empty
     * path, when they are no path on this mesh. Waypoints by `waypointsView` are taken without a copy.
     */
    straighten(start: PointLike, goal: PointLike, waypoints: ArrayLike<number>, form: Form = Form.IMPROVED): boolean {
        const { module } = this;
        const at = module.structs + 16;
        const list = putPoints(module, waypoints);
        return module.call("path_straighten", this.handle, putPoint(module, at, start), putPoint(module, at + 12, goal), list, waypoints.length / 3, form);
    }

    /** The corners, start first and goal last, three numbers each. */
    corners(): Float32Array {
        return this.cornersView().slice();
    }

    /** The same as a view into the module's memory, without a copy: it holds until the next call on any object of this module. */
    cornersView(): Float32Array {
        const { handle, module } = this;
        return module.fill(3, (array, count) => module.call("path_corners", handle, array, count, 0));
    }

    /** The sum of the legs in space. */
    length(): number {
        const { module } = this;
        const count = module.structs;
        module.call("path_corners", this.handle, 0, count, count + 8);
        return module.data.getFloat64(count + 8, true);
    }

    /** Places along the path, so far apart in the plane; a million at most. */
    places(step: number): Place[] {
        return this.listOfPlaces("path_places", step);
    }

    /** The corners, each moved away from its wall by the margin, or by as much as leaves the legs free. */
    offWalls(margin: number): Place[] {
        return this.listOfPlaces("path_off_walls", margin);
    }

    private listOfPlaces(name: string, value: number): Place[] {
        const { handle, module } = this;
        const list = module.fill(4, (array, count) => module.call(name, handle, value, array, count));
        return Array.from({ length: list.length / 4 }, (_, i) => placeAt(module, list.byteOffset + 16 * i));
    }
}
