import { element, setText, showRows } from "./panel";
import type { Recording, ShownCalls } from "./recording";

const around = 5; // calls before and after the one that is looked at

/** The panel of a recording: what it holds, how it went, and its calls one by one. */
export class RecordingPanel {
    private recording: Recording | null = null;
    private isPlaying = false;
    private rest = 0; // parts of a call

    /** `onMove` is told when another call is looked at. */
    constructor(private readonly onMove: () => void) {
        const step = (by: number) => () => {
            this.isPlaying = false;
            this.moveTo((this.recording?.at ?? 0) + by);
        };
        const on = (id: string, action: () => void) => element(id).addEventListener("click", action);
        on("callBack", step(-1));
        on("callStep", step(1));
        on("callPlay", () => this.toggle());
        on("callEnd", () => this.close());
        on("differenceShow", () => this.moveTo(this.recording?.outcome.difference?.call ?? 0));
        element("callAt").addEventListener("input", () => this.moveTo(Number(element<HTMLInputElement>("callAt").value)));
        element("callRate").addEventListener("input", () => this.show());
        this.show();
    }

    get isOpen(): boolean {
        return this.recording !== null;
    }

    get shown(): ShownCalls | null {
        return this.recording?.shown ?? null;
    }

    open(recording: Recording): void {
        this.recording = recording;
        this.isPlaying = false;
        recording.moveTo(recording.outcome.difference?.call ?? 0);
        this.show();
    }

    close(): void {
        this.recording = null;
        this.isPlaying = false;
        this.show();
        this.onMove();
    }

    frame(seconds: number): void {
        if (!this.isPlaying || !this.recording) return;
        this.rest += seconds * this.rate;
        const calls = Math.floor(this.rest);
        this.rest -= calls;
        if (calls) this.moveTo(this.recording.at + calls);
    }

    private get rate(): number {
        return Math.round(10 ** (Number(element<HTMLInputElement>("callRate").value) / 10));
    }

    private toggle(): void {
        if (!this.recording) return;
        this.isPlaying = !this.isPlaying;
        if (this.isPlaying && this.recording.at === this.recording.count) this.recording.moveTo(0);
        this.show();
    }

    private moveTo(at: number): void {
        this.recording?.moveTo(at);
        if (this.recording?.at === this.recording?.count) this.isPlaying = false;
        this.show();
        this.onMove();
    }

    private show(): void {
        const { recording } = this;
        element("recordingHint").hidden = recording !== null;
        element("recordingBox").hidden = recording === null;
        if (!recording) return;
        const { outcome, count, at } = recording;
        showRows("recordingFigures", [
            ["File", recording.name],
            ["Calls", count.toLocaleString("en") + (recording.isWhole ? "" : ", cut off")],
            ["Run again", `${outcome.calls.toLocaleString("en")} calls, ${outcome.searches.toLocaleString("en")} searches`],
        ]);
        setText("recordingResult", outcome.difference ? `Call ${outcome.difference.call} answers otherwise` : "Every answer as recorded");
        element("recordingResult").className = outcome.difference ? "bad" : "good";
        element("differenceBox").hidden = !outcome.difference;
        setText("difference", outcome.difference?.text ?? "");
        setText("callPlay", this.isPlaying ? "Pause" : "Play");
        setText("callRateText", this.rate.toLocaleString("en"));
        setText("callNumber", `${at.toLocaleString("en")} of ${count.toLocaleString("en")}`);
        const slider = element<HTMLInputElement>("callAt");
        slider.max = String(count);
        slider.value = String(at);
        this.showCalls(recording);
    }

    private showCalls(recording: Recording): void {
        const { at, count, outcome } = recording;
        const first = Math.max(at - 1 - around, 0);
        const last = Math.min(first + 2 * around, count - 1);
        const lines: HTMLElement[] = [];
        for (let index = first; index <= last; ++index) {
            const line = document.createElement("button");
            // bits tell something only where they differ
            line.textContent = `${index + 1}  ${recording.textOf(index).replace(/ \(0x\w+\)/g, "")}`;
            line.setAttribute("aria-current", String(index + 1 === at));
            line.classList.toggle("bad", index + 1 === outcome.difference?.call);
            line.addEventListener("click", () => this.moveTo(index + 1));
            lines.push(line);
        }
        element("calls").replaceChildren(...lines);
    }
}
