import type { ReplayOutcome } from "./engine";
import { Recording } from "./recording";
import type { Workbench } from "./workbench";

const magic = "ZUNOREC";

export function isRecording(bytes: Uint8Array): boolean {
    return String.fromCharCode(...bytes.subarray(0, magic.length)) === magic;
}

/**
 * Makes the calls of a recording again, over the mesh that is open, or over the sample that it
 * names, which is opened then. Throws an Error for what is no recording, and without its mesh.
 */
export async function replayRecording(bench: Workbench, name: string, bytes: Uint8Array): Promise<Recording> {
    const engine = await createEngine();
    const calls = engine.openRecording(bytes);
    const sample = /([^/\\]*?)(\.\w+)?$/.exec(calls.mesh)?.[1] ?? "";
    const run = (): ReplayOutcome => {
        if (!bench.world) throw new Error(`open its mesh first: ${calls.mesh}`);
        return engine.runRecording(bench.world.bytes);
    };
    let outcome: ReplayOutcome;
    try {
        outcome = run();
    } catch (error) {
        if (zunoSamples[sample] === undefined || bench.open?.sample === sample) throw error;
        await bench.openSample(sample);
        outcome = run();
    }
    return new Recording(name, engine, bench.world!.mesh, calls, outcome);
}
