import { LogLevel, Status, ZunoError } from "./statuses.js";

/** Takes reports of broken rules, and log lines. */
export type Log = (level: LogLevel, text: string, file: string, line: number) => void;

/** A place in the module's memory. */
export type Address = number;

type Call = (...values: (number | bigint)[]) => number;

const roomOfStructs = 1024;

function toConsole(level: LogLevel, text: string): void {
    if (level >= LogLevel.ERROR) console.error(text);
    else if (level === LogLevel.WARNING) console.warn(text);
}

/**
 * The compiled library: the one place that knows of memory, statuses and errors. The classes of this
 * package are made of it, and so is what calls functions that you linked into a module of your own.
 * Structs are put together in a block of its own, which each call may use anew; lists in another one
 * that grows.
 */
export class Module {
    /** Of the whole memory. They are other ones after any call during which it grew. */
    bytes!: Uint8Array;
    floats!: Float32Array;
    words!: Uint32Array;
    data!: DataView;
    /** Where structs are put together. */
    readonly structs: Address;
    private readonly memory: WebAssembly.Memory;
    private readonly calls: Record<string, Call>;
    private list: Address = 0;
    private listSize = 0;
    private failure: unknown = null;
    private readonly decoder = new TextDecoder();
    private readonly encoder = new TextEncoder();

    /** @internal */
    constructor(compiled: WebAssembly.Module, log: Log = toConsole) {
        const instance = new WebAssembly.Instance(compiled, this.imports(log));
        this.memory = instance.exports.memory as WebAssembly.Memory;
        this.calls = instance.exports as Record<string, Call>;
        this.lookAtMemory();
        this.enter("_initialize");
        this.enter("zuno_page_listen");
        this.structs = this.take(roomOfStructs);
    }

    /** How many bytes the module holds of the page's memory. */
    get size(): number {
        return this.bytes.byteLength;
    }

    /** Calls `zuno_` and this name, which keeps to the rules of `zuno.h`. Returns whether what was asked for is there; a failure is thrown. */
    call(name: string, ...values: (number | bigint)[]): boolean {
        const status = this.enter(`zuno_${name}`, ...values);
        if (status < 0) throw this.lastError();
        return status === Status.OK;
    }

    /** Calls what has no status. */
    enter(name: string, ...values: (number | bigint)[]): number {
        if (this.failure) throw this.broken();
        try {
            return this.calls[name](...values);
        } catch (error) {
            if (error instanceof TypeError) throw error; // an argument that is no number: nothing was called
            this.failure = error;
            throw this.broken();
        }
    }

    /** Room for a list, until the next one is asked for. */
    room(size: number): Address {
        if (this.list && size <= this.listSize) return this.list;
        const wanted = Math.max(size, 2 * this.listSize, 4096);
        const room = this.take(wanted);
        if (this.list) this.enter("free", this.list);
        [this.list, this.listSize] = [room, wanted];
        return room;
    }

    /** Puts a text, with its zero, at the list's place. */
    text(text: string): Address {
        const encoded = this.encoder.encode(text);
        const room = this.room(encoded.length + 1);
        this.bytes.set(encoded, room);
        this.bytes[room + encoded.length] = 0;
        return room;
    }

    /** Reads a text up to its zero. */
    textAt(address: Address): string {
        return this.decoder.decode(this.bytes.subarray(address, this.bytes.indexOf(0, address)));
    }

    /** Reads a list whose filling takes an array and a count, by the rule of `zuno.h` for arrays; a view. */
    fill(wordsEach: number, call: (array: Address, count: Address) => void): Float32Array {
        const count = this.structs + roomOfStructs - 4;
        this.words[count >> 2] = 0;
        call(0, count);
        const room = this.room(this.words[count >> 2] * wordsEach * 4);
        call(room, count);
        return this.floats.subarray(room >> 2, (room >> 2) + this.words[count >> 2] * wordsEach);
    }

    /** Puts a file into the module's memory, where the library finds it by its name. */
    putFile(name: string, content: ArrayBuffer | ArrayBufferView): void {
        const bytes = ArrayBuffer.isView(content)
            ? new Uint8Array(content.buffer, content.byteOffset, content.byteLength)
            : new Uint8Array(content);
        const room = this.enter("zuno_page_put", this.text(name), bytes.length) >>> 0;
        if (!room) throw new ZunoError(`${name}: there is no memory for ${bytes.length} bytes`, Status.NO_MEMORY);
        this.bytes.set(bytes, room);
    }

    /** Takes a file away, if it is there. */
    removeFile(name: string): void {
        this.enter("zuno_page_remove", this.text(name));
    }

    /** Calls a function while a file is there. */
    withFile<T>(name: string, content: ArrayBuffer | ArrayBufferView, call: () => T): T {
        this.putFile(name, content);
        try {
            return call();
        } finally {
            this.removeFile(name);
        }
    }

    /** Takes a file out of the module's memory. */
    takeFile(name: string): Uint8Array {
        const at = this.enter("zuno_page_get", this.text(name), this.structs) >>> 0;
        const content = this.bytes.slice(at, at + this.words[this.structs >> 2]);
        this.removeFile(name);
        return content;
    }

    private imports(log: Log): WebAssembly.Imports {
        const none = () => 8; // the code for a file that isn't open
        return {
            env: {
                emscripten_notify_memory_growth: () => this.lookAtMemory(),
                zuno_page_log: (_user: Address, level: LogLevel, text: Address, file: Address, line: number) => {
                    try {
                        log(level, this.textAt(text), this.textAt(file), line);
                    } catch (error) {
                        queueMicrotask(() => { throw error; }); // it is the page's, and nobody's in between
                    }
                },
            },
            wasi_snapshot_preview1: {
                clock_time_get: (_clock: number, _precision: bigint, time: Address) => {
                    this.data.setBigUint64(time, BigInt(Math.round(performance.now() * 1e6)), true);
                    return 0;
                },
                proc_exit: (code: number) => { throw new Error(`it ended with ${code}`); },
                fd_close: none, fd_read: none, fd_seek: none, fd_write: none, fd_fdstat_get: none,
                environ_get: none, environ_sizes_get: none,
            },
        };
    }

    private lookAtMemory(): void {
        const { buffer } = this.memory;
        this.bytes = new Uint8Array(buffer);
        this.floats = new Float32Array(buffer);
        this.words = new Uint32Array(buffer);
        this.data = new DataView(buffer);
    }

    private take(size: number): Address {
        const block = this.enter("malloc", size) >>> 0;
        if (!block) throw new ZunoError(`there is no memory for ${size} bytes`, Status.NO_MEMORY);
        return block;
    }

    private lastError(): ZunoError {
        const error = this.structs;
        const at = error >> 2;
        this.words[at] = 24;
        this.enter("zuno_last_error", error);
        const [status, text, type, parameters, count] = this.words.subarray(at + 1, at + 6);
        const named: Record<string, string> = {};
        for (let i = 0, at = parameters >> 2; i < count; ++i, at += 2) named[this.textAt(this.words[at])] = this.textAt(this.words[at + 1]);
        const withoutFunction = this.textAt(text).replace(/^zuno_\w+: /, "");
        return new ZunoError(withoutFunction, (status | 0) as Status, this.textAt(type), named);
    }

    private broken(): ZunoError {
        return new ZunoError(`the module stopped and has to be loaded anew: ${this.failure}`, Status.FAILED);
    }
}
