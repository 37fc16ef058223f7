import { defineConfig } from "vitest/config";

/** The built page in a real browser against the real program; needs `npm run build` first. */
export default defineConfig({
  test: {
    environment: "node",
    include: ["tests/e2e/**/*.test.ts"],
    fileParallelism: false,
    testTimeout: 60_000,
    hookTimeout: 60_000,
  },
});
