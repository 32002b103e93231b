const recordingMagic = "ZUNOREC";
const sceneLine = /^(v|vt|vn|f|g|o|s|mtllib|usemtl) /;
const longestBeginning = 10000; // bytes

function beginningOf(bytes: Uint8Array): string {
    return new TextDecoder().decode(bytes.subarray(0, longestBeginning));
}

export function isRecording(bytes: Uint8Array): boolean {
    return beginningOf(bytes).startsWith(recordingMagic);
}

/** Whether a file is named as one of the scenes that the page makes meshes of. */
export function isSceneName(name: string): boolean {
    return /\.(obj|glb|gltf)$/i.test(name);
}

/** Whether it is named as one that lies under a mesh which is dropped with it. */
export function isWavefrontName(name: string): boolean {
    return /\.obj$/i.test(name);
}

/** Whether it begins as a Wavefront OBJ file does. */
export function isScene(bytes: Uint8Array): boolean {
    const lines = beginningOf(bytes).split("\n");
    const markup = lines.findIndex((line) => line.includes("<"));
    const scene = lines.findIndex((line) => sceneLine.test(line));
    return bytes[0] > 1 && scene >= 0 && (markup < 0 || scene < markup);
}

/** What a file is that is no mesh, as far as its beginning tells; null: it may be a broken one. */
export function whatElseIs(bytes: Uint8Array): string | null {
    if (bytes.length === 0) return "is empty; expected a mesh";
    if (isScene(bytes)) return "is a scene (Wavefront OBJ); under a name that ends in .obj it becomes a mesh";
    return bytes[0] > 1 && !beginningOf(bytes).includes("<") ? "is no mesh: neither XML nor the binary form" : null;
}
