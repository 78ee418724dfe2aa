-- Makes a page of docs/ a page of the manual: pandoc --to man --lua-filter man_page.lua, with this metadata:
--
--     name      of the page, without its section
--     summary   for the section NAME
--     tool      given for the page of the tool, which leaves out what the pages of its commands have
--     command   for the page of a command: of the source only the section is taken whose heading lists it
--     help      a file with what the command prints about its options, from which the section OPTIONS is made
--
-- Links lead to other pages of the manual where there is one, and otherwise nowhere: their text remains.

local stringify = pandoc.utils.stringify

local pages = {
    ["cvregexp.md"] = "cvregexp(1)",
    ["dialect.md"] = "corvane-dialect(7)",
    ["replacement.md"] = "corvane-replacement(7)",
}

-- The pages that links lead to, in the order of the first of each.
local mentioned, isMentioned = {}, {}

local function mention(page)
    if not isMentioned[page] then
        isMentioned[page] = true
        table.insert(mentioned, page)
    end
end

local function link(element)
    local file = element.target:match("([^/#]+%.md)")
    local page = file and pages[file]
    if page then
        mention(page)
        if stringify(element.content) == file then
            return pandoc.Str(page)
        end
    end
    return element.content
end

-- Whether a heading like "escape, wildcard, spaces" lists the command.
local function lists(heading, command)
    for word in stringify(heading.content):gmatch("[%w-]+") do
        if word == command then
            return true
        end
    end
    return false
end

-- The commands of the synopsis at the top of the page, each with its line.
local function synopsis(blocks)
    local lines = {}
    for _, block in ipairs(blocks) do
        if block.t == "CodeBlock" then
            for line in block.text:gmatch("[^\n]+") do
                table.insert(lines, line)
            end
            return lines
        end
    end
    return lines
end

local function namesOf(line)
    local names = {}
    for name in (line:match("^cvregexp ([%l|-]+) ") or ""):gmatch("%l[%l-]*") do
        names[name] = true
    end
    return names
end

-- Divides a page at its headings of the second level: pairs of a heading, which is missing in front of the first, and
-- the blocks below it. The title is dropped.
local function sections(blocks)
    local all = {{blocks = {}}}
    for _, block in ipairs(blocks) do
        if block.t == "Header" and block.level == 2 then
            table.insert(all, {heading = block, blocks = {}})
        elseif not (block.t == "Header" and block.level == 1) then
            table.insert(all[#all].blocks, block)
        end
    end
    return all
end

-- Headings of the page's own sections are of the first level and in capitals; those below move up with them.
local function raised(block)
    if block.t == "Header" then
        block.level = block.level - 1
    end
    return block
end

local function heading(text)
    return pandoc.Header(1, pandoc.Str(text:upper()))
end

local function append(list, more)
    for _, element in ipairs(more) do
        table.insert(list, element)
    end
end

-- The page of a command has its options from the tool, and not a second time from a table.
local function isTableOfOptions(block)
    return block.t == "Table" and stringify(block.head.rows[1].cells[1].contents) == "option"
end

-- The options that a command prints, as lists of definitions below the headings of their groups.
local function options(file)
    local blocks, items, item = {}, nil, nil
    local function close()
        if items and #items > 0 then
            table.insert(blocks, pandoc.DefinitionList(items))
        end
        items, item = {}, nil
    end
    close()
    for line in io.lines(file) do
        line = line:gsub("%s+$", "")
        local option, text = line:match("^  (%-%S.-)%s%s+(%S.*)$")
        option = option or line:match("^  (%-%S.*)$")
        if option then
            -- The short name in front of the long one: "-o [ --only-matching ]".
            option = option:gsub(" %[ (%-%-[%w-]+) %]", ", %1")
            item = {pandoc.Inlines(pandoc.Strong(option)), {pandoc.Para(text and pandoc.Str(text) or {})}}
            table.insert(items, item)
        elseif line:match("^%s+%S") and item then
            item[2][1].content:extend({pandoc.Space(), pandoc.Str(line:match("^%s+(.*)$"))})
        elseif line:match("^%S.*:$") and not line:match("^Usage") then
            close()
            table.insert(blocks, pandoc.Header(2, pandoc.Str(line:sub(1, -2))))
        end
    end
    close()
    return blocks
end

local function commandPage(all, meta)
    local command, blocks = stringify(meta.command), {}
    local usage = {}
    for _, line in ipairs(synopsis(all[1].blocks)) do
        if namesOf(line)[command] then
            table.insert(usage, (line:gsub("^cvregexp [%l|-]+", "cvregexp " .. command)))
        end
    end
    append(blocks, {heading("Synopsis"), pandoc.CodeBlock(table.concat(usage, "\n")), heading("Description")})
    for _, section in ipairs(all) do
        if section.heading and lists(section.heading, command) then
            for _, block in ipairs(section.blocks) do
                append(blocks, isTableOfOptions(block) and {} or {block})
            end
        end
    end
    append(blocks, {heading("Options")})
    append(blocks, options(stringify(meta.help)))
    mention("cvregexp(1)")
    return blocks
end

local function wholePage(all, meta)
    local commands = {}
    if meta.tool then
        for _, line in ipairs(synopsis(all[1].blocks)) do
            for name in pairs(namesOf(line)) do
                commands[name] = true
            end
        end
    end
    local function hasItsOwnPage(section)
        for name in pairs(commands) do
            if lists(section.heading, name) then
                return not stringify(section.heading.content):match("%u")
            end
        end
        return false
    end
    local blocks = {heading("Description")}
    for _, section in ipairs(all) do
        if not section.heading then
            append(blocks, section.blocks)
        elseif not hasItsOwnPage(section) then
            append(blocks, {heading(stringify(section.heading.content))})
            append(blocks, section.blocks)
        end
    end
    for name in pairs(commands) do
        table.insert(mentioned, "cvregexp-" .. name .. "(1)")
    end
    return blocks
end

function Pandoc(document)
    local meta = document.meta
    local name = stringify(meta.name)
    document = document:walk({Link = link, Image = link})
    local all = sections(document.blocks)
    for _, section in ipairs(all) do
        for i, block in ipairs(section.blocks) do
            section.blocks[i] = raised(block)
        end
    end
    local body = meta.command and commandPage(all, meta) or wholePage(all, meta)
    local blocks = {heading("Name"), pandoc.Para(pandoc.Str(name .. " - " .. stringify(meta.summary)))}
    append(blocks, body)

    table.sort(mentioned)
    local others = {}
    for _, page in ipairs(mentioned) do
        if not page:match("^" .. name:gsub("%p", "%%%0") .. "%(") then
            append(others, {#others > 0 and pandoc.Str(", ") or pandoc.Str(""), pandoc.Strong(page)})
        end
    end
    if #others > 0 then
        append(blocks, {heading("See also"), pandoc.Para(others)})
    end
    return pandoc.Pandoc(blocks, pandoc.Meta({}))
end
