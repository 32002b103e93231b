import type { Baked, BakeSettings } from "./baker";
import { Baking, type BakeProgress, type Scene } from "./baking";
import { element, save, setText, showRows, showTab } from "./panel";
import type { Workbench } from "./workbench";

const pause = 500; // milliseconds after the last change of a number

/** Fields by their ids, with what zunobake's options take: the least, the most. */
const numbers: Record<string, [keyof BakeSettings, string, number, number]> = {
    bakeRadius: ["radius", "The radius", 0, 1e6],
    bakeHeight: ["height", "The height", 1e-6, 1e6],
    bakeClimb: ["climb", "The climb", 0, 1e6],
    bakeSlope: ["slope", "The slope", 0, 89],
    bakeCellSize: ["cellSize", "The cell size", 1e-6, 1e6],
    bakeCellHeight: ["cellHeight", "The cell height", 1e-6, 1e6],
};
const choices: Record<string, keyof BakeSettings> = {
    bakeZUp: "isZUp",
    bakeBothSides: "takesBothSides",
    bakeSkips: "skipsDegenerate",
};

const input = (id: string) => element<HTMLInputElement>(id);

/** What zunobake prints, as names and values: a line without a name goes on with the value before. */
function rowsOf(summary: string): [string, string][] {
    const rows: [string, string][] = [];
    for (const line of summary.trimEnd().split("\n").slice(1)) {
        const name = line.slice(0, 15).trim();
        const last = rows.at(-1);
        if (name || !last) rows.push([name.charAt(0).toUpperCase() + name.slice(1), line.slice(15).trim()]);
        else last[1] += `\n${line.slice(15).trim()}`;
    }
    return rows.filter(([name]) => name !== "Oddities"); // the page lists them
}

/** The panel of a scene: the numbers that its mesh is made with, how far it is, what came of it. */
export class BakePanel {
    private scene: Scene | null = null;
    private baking: Baking | null = null;
    private baked: Baked | null = null;
    private timer = 0;
    private stage = { name: "", begin: 0 };

    constructor(private readonly bench: Workbench) {
        for (const id of Object.keys({ ...numbers, ...choices }))
            element(id).addEventListener("input", () => {
                this.cancel();
                this.timer = window.setTimeout(() => void this.bake(), pause);
            });
        element("bakeForm").addEventListener("submit", (event) => {
            event.preventDefault();
            void this.bake();
        });
        element("bakeCancel").addEventListener("click", () => {
            this.cancel();
            this.say("Cancelled.");
        });
        for (const form of ["bin", "xml"] as const) element(`bakeSave_${form}`).addEventListener("click", () => this.save(form));
        this.show();
    }

    /** Takes a scene's file and bakes it. */
    async open(file: File): Promise<void> {
        this.cancel();
        showTab("bake");
        try {
            this.scene = { name: file.name, content: new Uint8Array(await file.arrayBuffer()) };
        } catch {
            return this.say(`${file.name}: can't be read.`);
        }
        this.baked = null;
        await this.bake();
    }

    /** Ends what is being baked, or waits for it. */
    cancel(): void {
        clearTimeout(this.timer);
        this.baking?.cancel();
        this.baking = null;
        setText("bakeStage", "");
        this.show();
    }

    /** Bakes with the numbers as they are. A failure leaves the mesh that is there. */
    private async bake(): Promise<void> {
        this.cancel();
        const { scene, bench } = this;
        if (!scene) return;
        this.say("");
        try {
            const baking = new Baking(scene, this.readSettings(), (progress) => this.showProgress(progress));
            this.baking = baking;
            this.showProgress({ stage: "loading", done: 0, all: 0 });
            this.show();
            const baked = await baking.result;
            if (!baked || this.baking !== baking) return;
            this.baked = baked;
            await bench.opener.openBaked(scene.name, baked);
        } catch (error) {
            this.say(error instanceof Error ? error.message : String(error));
        }
        this.baking = null;
        this.show();
    }

    /** Throws an Error for what is no number, or none that is taken. */
    private readSettings(): BakeSettings {
        const settings: Record<string, number | boolean> = {};
        for (const [id, [name, words, least, most]] of Object.entries(numbers)) {
            const field = input(id);
            const value = field.value.trim() === "" ? NaN : Number(field.value.replace(",", "."));
            const isRight = value >= least && value <= most;
            field.setAttribute("aria-invalid", String(!isRight));
            if (!isRight) throw new Error(`${words} must be a number from ${least} to ${most}.`);
            settings[name] = value;
        }
        for (const [id, name] of Object.entries(choices)) settings[name] = input(id).checked;
        return settings as unknown as BakeSettings;
    }

    private save(form: "bin" | "xml"): void {
        if (!this.scene || !this.baked) return;
        const content = form === "bin" ? this.baked.binary : this.baked.xml;
        if (!content) return this.say(this.baked.xmlFailure);
        save(`${this.scene.name.replace(/\.\w+$/, "")}.${form}`, new Blob([content], { type: "application/octet-stream" }));
    }

    private say(text: string): void {
        setText("bakeFault", text);
        element("bakeFault").hidden = text === "";
    }

    private showProgress({ stage, done, all }: BakeProgress): void {
        const now = performance.now();
        if (this.stage.name !== stage || all === 0) this.stage = { name: stage, begin: now };
        const bar = element<HTMLProgressElement>("bakeBar");
        if (all > 0 && done > 0) {
            const left = Math.round((((now - this.stage.begin) / 1000) * (all - done)) / done);
            bar.value = done / all;
            setText("bakeStage", `${stage} ${Math.floor((done * 100) / all)} %, ${left} s left`);
        } else {
            bar.removeAttribute("value");
            setText("bakeStage", stage);
        }
    }

    private show(): void {
        element("bakeHint").hidden = this.scene !== null;
        element("bakeForm").hidden = this.scene === null;
        element("bakeProgress").hidden = this.baking === null;
        element("bakeStart").hidden = this.baking !== null;
        element("bakeResult").hidden = this.baked === null;
        setText("bakeName", this.scene?.name ?? "");
        showRows("bakeFigures", this.baked ? rowsOf(this.baked.summary) : []);
    }
}
