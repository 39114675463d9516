-- For pandoc: a page of the guide as HTML. Links lead from page to page, and the title is that of the
-- page. Of README.md, whose table has a column for each language, a list is left, from a folder
-- below.
local function toHtml(target)
  return (target:gsub('%.md$', '.html'):gsub('%.md#', '.html#'))
end

local column = nil -- of the table that becomes a list

-- A page in the list. The first column says in English what it is about, more than its link does.
local function entry(row)
  if column ~= 2 then
    return row[column]
  end
  return pandoc.walk_block(pandoc.Div(row[column]), {
    Link = function(link)
      link.content = pandoc.utils.blocks_to_inlines(row[1])
      return link
    end,
  }).content
end

local function contents(document)
  local blocks = { pandoc.Header(1, document.meta.backtext) }
  for _, block in ipairs(document.blocks) do
    if block.t == 'Table' then
      local items = {}
      for _, row in ipairs(pandoc.utils.to_simple_table(block).rows) do
        items[#items + 1] = entry(row)
      end
      blocks[#blocks + 1] = pandoc.BulletList(items)
    end
  end
  return blocks
end

function Pandoc(document)
  local wanted = document.meta.contents
  if wanted then
    column = tonumber(pandoc.utils.stringify(wanted))
    document.blocks = contents(document)
  end
  for _, block in ipairs(document.blocks) do
    if block.t == 'Header' then
      document.meta.pagetitle = pandoc.utils.stringify(block)
      break
    end
  end
  document.blocks = pandoc.walk_block(pandoc.Div(document.blocks), {
    Link = function(link)
      link.target = toHtml(link.target)
      if wanted then
        link.target = '../' .. link.target
      end
      return link
    end,
  }).content
  return document
end
