import type { Address, Module } from "./module.js";
import { Status, ZunoError } from "./statuses.js";

if (!Symbol.dispose) Object.defineProperty(Symbol, "dispose", { value: Symbol.for("Symbol.dispose") });

/** Holds an object of the library's until it is disposed of, by `dispose()` or at the end of a `using`. */
export abstract class Held {
    private held: Address;

    /** @internal */
    protected constructor(
        /** @internal */
        protected readonly module: Module,
        handle: Address,
    ) {
        this.held = handle;
    }

    get isDisposed(): boolean {
        return this.held === 0;
    }

    /** The object's handle, for functions beside those of this package. A disposed object has none: it throws. */
    get handle(): Address {
        if (this.held) return this.held;
        throw new ZunoError(`this ${this.constructor.name} was disposed of`, Status.BAD_HANDLE);
    }

    /** Gives back what it holds; a second time does nothing. */
    dispose(): void {
        const { held } = this;
        if (!held) return;
        this.destroy(held);
        this.held = 0;
    }

    [Symbol.dispose](): void {
        this.dispose();
    }

    /** @internal */
    protected destroy(handle: Address): void {
        this.module.enter("zuno_destroy", handle); // no failure when its session was closed before
    }
}

/** @internal Calls what makes an object, and gives its handle; 0 for none. */
export function make(module: Module, name: string, ...values: (number | bigint)[]): Address {
    const place = module.structs;
    return module.call(name, ...values, place) ? module.words[place >> 2] : 0;
}
