import { ZunoError } from "zunopathfinder/external";
import type { Baked } from "./baker";
import { isRecording, isSceneName, isWavefrontName, whatElseIs } from "./filekinds";
import { openMesh, type OpenMesh } from "./meshes";
import { element, showTab } from "./panel";
import { replayRecording } from "./replay";
import { unpack } from "./runtime";
import { readScene, showScene } from "./scene";
import type { Workbench } from "./workbench";

/** The runtime's own words, with the parameters that it names. */
function messageOf(error: unknown): string {
    if (!(error instanceof Error)) return String(error);
    const parameters = error instanceof ZunoError ? Object.entries(error.parameters).map(([name, value]) => `${name}: ${value}`) : [];
    return error.message.replace(/^mesh: /, "") + (parameters.length ? ` (${parameters.join(", ")})` : "");
}

/** Opens samples, meshes, scenes and recordings. What can't be read leaves what was open as it is. */
export class Opener {
    /** How long it took. */
    timings: [string, string][] = [];
    private openings = 0;

    constructor(private readonly bench: Workbench) {
        const samples = element<HTMLSelectElement>("sample");
        samples.add(new Option("–", ""));
        for (const name of Object.keys(zunoSamples)) samples.add(new Option(name, name));
    }

    async openSample(name: string): Promise<void> {
        this.bench.address.awaited = null;
        this.bench.bakery.cancel();
        if (!zunoSamples[name]) return this.bench.fail(`There is no sample “${name}”.`);
        await this.openBytes(name, await unpack(zunoSamples[name]), name);
    }

    /** Opens what was dropped: a scene, which is baked, or a mesh, the scene under it, and a recording over it. */
    async openFiles(files: File[]): Promise<void> {
        const scene = files.find(({ name }) => isSceneName(name));
        const others = files.filter((file) => file !== scene);
        if (scene && !(others.length && isWavefrontName(scene.name))) return this.bench.bakery.open(scene);
        this.bench.bakery.cancel();
        const contents = await Promise.all(others.map(async (file) => ({ name: file.name, bytes: new Uint8Array(await file.arrayBuffer()) })));
        const mesh = contents.find(({ bytes }) => !isRecording(bytes));
        if (mesh) await this.openBytes(mesh.name, mesh.bytes, null);
        if (scene) await this.openScene(scene);
        this.bench.address.applyAwaited();
        const recording = contents.find(({ bytes }) => isRecording(bytes));
        if (recording) await this.openRecording(recording.name, recording.bytes);
    }

    /** Opens a mesh in a new runtime. */
    async openBytes(name: string, bytes: Uint8Array, sample: string | null): Promise<void> {
        const { bench } = this;
        const begin = performance.now();
        const turn = ++this.openings;
        let opened: OpenMesh;
        try {
            opened = await openMesh(name, sample, bytes, bench.view, bench.palette);
        } catch (error) {
            bench.fail(`${name}: ${whatElseIs(bytes) ?? messageOf(error)}`);
            element<HTMLSelectElement>("sample").value = bench.open?.sample ?? "";
            return;
        }
        if (turn !== this.openings) return; // another was asked for meanwhile
        const loaded = performance.now();
        bench.show(opened, begin);
        if (opened.running) bench.hideError();
        else bench.fail(`${name}: no world can run over this mesh: ${opened.mesh.defects[0].text}`);
        if (!opened.running) showTab("defects");
        // the second frame begins when the first is on the screen
        for (let i = 0; i < 2; ++i) await new Promise(requestAnimationFrame);
        const seen = performance.now() - begin;
        this.timings = [
            ["Opened in", `${(loaded - begin).toFixed(0)} ms`],
            ["First picture", `after ${seen.toFixed(0)} ms`],
        ];
        element("stage").dataset.firstPicture = String(seen);
        bench.showAll();
    }

    /** Opens the mesh of a scene. One that was open before is seen from where it was, with the same queries. */
    async openBaked(name: string, { binary, triangles }: Baked): Promise<void> {
        const { address, open, view } = this.bench;
        const state = open && !open.sample && open.name === name ? address.state : null;
        await this.openBytes(name, binary, null);
        if (this.bench.open?.bytes === binary) showScene(view, triangles);
        if (state) address.apply(state);
        else address.applyAwaited();
        this.bench.showAll();
        showTab("bake");
    }

    private async openScene(file: File): Promise<void> {
        const { bench } = this;
        try {
            showScene(bench.view, readScene(await file.text()));
        } catch (error) {
            bench.fail(`${file.name}: ${messageOf(error)}`);
        }
        bench.showAll();
    }

    private async openRecording(name: string, bytes: Uint8Array): Promise<void> {
        const { bench } = this;
        try {
            bench.recording.open(await replayRecording(bench, name, bytes));
            bench.hideError();
            showTab("recording");
        } catch (error) {
            bench.fail(`${name}: ${messageOf(error).replace(/; mesh 1 (?=has|can't)/, `; ${bench.open?.name} `)}`);
        }
        bench.showAll();
    }
}
