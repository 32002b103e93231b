import type { Address, Module } from "zunopathfinder/external";
import { takeBytes, takeFloats, takeIntegers, takeText } from "./answers";

/** A host's calls, in arrays with an entry for each: six arguments, four floats of an answer. */
export class RecordedCalls {
    readonly isWhole: boolean;
    /** The file that the host named. */
    readonly mesh: string;
    readonly kinds: Uint8Array;
    readonly ids: Int32Array;
    readonly answers: Int32Array;
    readonly arguments: Float32Array;
    readonly answerFloats: Float32Array;
    private readonly handle: Address;

    /** Throws a ZunoError for what is no recording. */
    constructor(private readonly module: Module, content: Uint8Array) {
        const file = "recording";
        module.withFile(file, content, () => module.call("tool_recording_open", module.text(file), module.structs));
        this.handle = module.words[module.structs >> 2];
        this.isWhole = takeText(module, "isWhole") !== "";
        this.mesh = takeText(module, "mesh");
        this.kinds = takeBytes(module, "kinds");
        this.ids = takeIntegers(module, "ids");
        this.answers = takeIntegers(module, "answers");
        this.arguments = takeFloats(module, "arguments");
        this.answerFloats = takeFloats(module, "answerFloats");
    }

    /** A call and its recorded answer, in words. */
    textOf(index: number): string {
        this.module.call("tool_recording_text", this.handle, index);
        return takeText(this.module, "text");
    }
}
