import { Crowd } from "./crowd";
import { lookAtMesh, type MeshDescription } from "./meshlook";
import { MeshView, Palette } from "./meshview";
import { Queries } from "./queries";
import { loadRuntime } from "./runtime";
import type { View } from "./view";
import { Walker } from "./walker";
import { World } from "./world";

/** A world, and everything that runs in it. */
export interface Running {
    world: World;
    queries: Queries;
    walker: Walker;
    crowd: Crowd;
}

/** A mesh that is shown. */
export interface OpenMesh {
    name: string;
    sample: string | null;
    /** The file, for a runtime that makes a recording's calls over it. */
    bytes: Uint8Array;
    mesh: MeshDescription;
    view: MeshView;
    /** Null when no world can run over it. */
    running: Running | null;
}

/** Opens a mesh in a runtime of its own. Throws a ZunoError with what is wrong with it. */
export async function openMesh(name: string, sample: string | null, bytes: Uint8Array, view: View, palette: Palette): Promise<OpenMesh> {
    const zuno = await loadRuntime();
    const mesh = lookAtMesh(zuno.module, bytes);
    const world = mesh.isFit ? new World(zuno, bytes) : null;
    const running = world && {
        world,
        queries: new Queries(world, mesh),
        walker: new Walker(view, world, mesh),
        crowd: new Crowd(view, world, mesh),
    };
    return { name, sample, bytes, mesh, view: new MeshView(mesh, palette), running };
}

export function closeMesh({ running }: OpenMesh): void {
    running?.walker.stop();
    running?.crowd.end();
    running?.world.close();
}
