import { defineConfig, mergeConfig } from "vite";
import { unicoFile } from "./build/unicoFile";
import pagina from "./vite.config";

/** The gallery of the parts as one file, built like the page. */
export default mergeConfig(
  { ...pagina, plugins: [unicoFile("galleria.html")] },
  defineConfig({
    root: "tests/galleria",
    build: { outDir: "../../dist", chunkSizeWarningLimit: 400 },
  }),
);
