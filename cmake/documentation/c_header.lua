-- Reads a header of C for pandoc: pandoc --from c_header.lua. Its opening comment becomes text, as Markdown, and what follows a
-- heading of its own, like
--
--     /* ---- statuses ---- */
--
-- is shown below that heading as it is written. What is in front of the first heading is left out.

local function openingComment(text)
    local comment = text:match("^/%*(.-)%*/")
    local lines = {}
    for line in (comment .. "\n"):gmatch("(.-)\n") do
        table.insert(lines, (line:gsub("^ %* ?", ""):gsub("^ ", "", #lines == 0 and 1 or 0)))
    end
    return table.concat(lines, "\n")
end

function Reader(input)
    local text = tostring(input)
    local parts = {openingComment(text), ""}
    local isShown = false
    for line in (text .. "\n"):gmatch("(.-)\n") do
        local heading = line:match("^/%* %-%-%-%- (.+) %-%-%-%- %*/$")
        if heading then
            isShown = true
            table.insert(parts, "\n## " .. heading .. "\n")
        elseif line:match("^#if") or line:match("^#endif") or line:match("^#define CVRE_API") then
            isShown = isShown and not line:match("^#ifdef __cplusplus")
        elseif isShown then
            table.insert(parts, "    " .. (line:gsub("^CVRE_API ", "")))
        end
    end
    return pandoc.read(table.concat(parts, "\n"), "gfm")
end
