import { Mesh } from "./mesh.js";
import { type Log, Module } from "./module.js";
import { Session, type SessionSettings } from "./session.js";
import { Content, countAt } from "./values.js";

export interface LoadSettings {
    /** Takes reports of broken rules, and log lines; without it warnings and worse go to the console. */
    log?: Log;
}

export interface Replay {
    /** Whether the recording was closed, not cut off. */
    isWhole: boolean;
    calls: number;
    searches: number;
    /** The call, from 1, that first answered otherwise, and what it was; null when none did. */
    difference: { call: number; text: string } | null;
}

const headerVersion = 10000;
const roomOfDifference = 65536;

/** The library, loaded: with a memory and a world of its own. */
export class Zuno {
    /** "1.0.0" */
    readonly version: string;

    /** @internal */
    constructor(
        /** The compiled module, for functions of your own that were linked into it. */
        readonly module: Module,
    ) {
        module.call("check_version", headerVersion, module.structs);
        const version = module.words[module.structs >> 2];
        this.version = [version / 10000, (version / 100) % 100, version % 100].map(Math.floor).join(".");
    }

    /** Bytes that the library takes of the page's memory. They grow, and are given back when this object is collected. */
    get memorySize(): number {
        return this.module.size;
    }

    /** Starts a world over a mesh. There is one at a time; the session is yours to close. */
    start(mesh: Content, settings: SessionSettings = {}): Session {
        return Session.start(this.module, mesh, settings);
    }

    /** Reads a mesh without a world; `name` is for messages. */
    loadMesh(mesh: Content, name = "mesh"): Mesh {
        return Mesh.load(this.module, mesh, name);
    }

    /** Makes the calls of a recording again over its meshes, up to the first other answer, while no session runs. */
    replay(recording: Content, meshes: Content[]): Replay {
        const { module } = this;
        const files = [recording, ...meshes];
        const names = files.map((_, i) => (i ? `mesh ${i}` : "recording"));
        try {
            files.forEach((content, i) => module.putFile(names[i], content));
            return this.replayFiles(names);
        } finally {
            for (const name of names) module.removeFile(name);
        }
    }

    private replayFiles(names: string[]): Replay {
        const { module } = this;
        const result = module.structs;
        const size = result + 32;
        const texts = module.text(names.join("\0") + "\0".repeat(4 * names.length + 8 + roomOfDifference));
        const pointers = (texts + names.join().length + 8) & ~3;
        let at = texts;
        for (const [i, name] of names.entries()) {
            module.words[(pointers >> 2) + i] = at;
            at += name.length + 1;
        }
        const text = pointers + 4 * names.length;
        module.words[result >> 2] = 32;
        module.words[size >> 2] = roomOfDifference;
        module.call("replay", texts, pointers + 4, names.length - 1, result, text, size);
        const difference = countAt(module, result + 24);
        return {
            isWhole: module.words[(result + 4) >> 2] === 1,
            calls: countAt(module, result + 8),
            searches: countAt(module, result + 16),
            difference: difference ? { call: difference, text: module.textAt(text) } : null,
        };
    }
}

/** Makes the library of a compiled module. */
export function makeZuno(compiled: WebAssembly.Module, { log }: LoadSettings): Zuno {
    return new Zuno(new Module(compiled, log));
}
