import { defineConfig } from "vitest/config";
import { unicoFile } from "./build/unicoFile";

export default defineConfig({
  plugins: [unicoFile("ui.html")],
  esbuild: { jsx: "automatic", jsxImportSource: "preact", charset: "ascii", legalComments: "none" },
  build: {
    target: ["es2020", "safari15"],
    // The one file is written over: it is never missing while others read it.
    emptyOutDir: false,
    modulePreload: false,
    cssCodeSplit: false,
    assetsInlineLimit: 1_000_000,
    chunkSizeWarningLimit: 400,
    rollupOptions: { output: { format: "iife", inlineDynamicImports: true } },
  },
  test: {
    environment: "jsdom",
    include: ["tests/unit/**/*.test.{ts,tsx}"],
  },
});
