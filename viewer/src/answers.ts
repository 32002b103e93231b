/** Takes what a function of viewer/engine has left in the module's memory, by its name there. */
import type { Module } from "zunopathfinder/external";

const decoder = new TextDecoder();

export const takeBytes = (module: Module, name: string) => module.takeFile(name);
export const takeFloats = (module: Module, name: string) => new Float32Array(module.takeFile(name).buffer);
export const takeIntegers = (module: Module, name: string) => new Int32Array(module.takeFile(name).buffer);
export const takeWords = (module: Module, name: string) => new Uint32Array(module.takeFile(name).buffer);
export const takeText = (module: Module, name: string) => decoder.decode(module.takeFile(name));
/** Texts with a zero behind each. */
export const takeTexts = (module: Module, name: string) => takeText(module, name).split("\0").slice(0, -1);
