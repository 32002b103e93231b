/** The compiled library: gzip, in base 64. */
export const packed: string;
