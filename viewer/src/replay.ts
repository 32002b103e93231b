import type { Replay } from "zunopathfinder/external";
import { RecordedCalls } from "./recordedcalls";
import { Recording } from "./recording";
import { loadRuntime } from "./runtime";
import type { Workbench } from "./workbench";

/**
 * Makes the calls of a recording again, over the mesh that is open, or over the sample that it
 * names, which is opened then. Throws an Error for what is no recording, and without its mesh.
 */
export async function replayRecording(bench: Workbench, name: string, bytes: Uint8Array): Promise<Recording> {
    const zuno = await loadRuntime();
    const calls = new RecordedCalls(zuno.module, bytes);
    const sample = /([^/\\]*?)(\.\w+)?$/.exec(calls.mesh)?.[1] ?? "";
    const run = (): Replay => {
        if (!bench.open?.running) throw new Error(`open its mesh first: ${calls.mesh}`);
        return zuno.replay(bytes, [bench.open.bytes]);
    };
    let outcome: Replay;
    try {
        outcome = run();
    } catch (error) {
        if (zunoSamples[sample] === undefined || bench.open?.sample === sample) throw error;
        await bench.opener.openSample(sample);
        outcome = run();
    }
    return new Recording(name, bench.open!.mesh, calls, outcome);
}
