import { Crowd } from "./crowd";
import type { Engine, MeshDescription } from "./engine";
import { MeshView, Palette } from "./meshview";
import { Queries } from "./queries";
import type { View } from "./view";
import { Walker } from "./walker";

/** A mesh with its engine, and everything that runs over it. */
export interface OpenMesh {
    name: string;
    sample: string | null;
    /** The file, for engines that run a recording over it. */
    bytes: Uint8Array;
    engine: Engine;
    mesh: MeshDescription;
    view: MeshView;
    queries: Queries;
    walker: Walker;
    crowd: Crowd;
}

/** The bytes of a sample. */
export async function unpackSample(name: string): Promise<Uint8Array> {
    const packed = Uint8Array.from(atob(zunoSamples[name]), (letter) => letter.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** Opens a mesh in a new engine. Throws an Error with the runtime's message. */
export async function openMesh(name: string, sample: string | null, bytes: Uint8Array, view: View, palette: Palette): Promise<OpenMesh> {
    const engine = await createEngine();
    const mesh = engine.openMesh(bytes);
    return {
        name, sample, bytes, engine, mesh,
        view: new MeshView(mesh, palette),
        queries: new Queries(engine, mesh),
        walker: new Walker(view, engine, mesh),
        crowd: new Crowd(view, engine, mesh),
    };
}
